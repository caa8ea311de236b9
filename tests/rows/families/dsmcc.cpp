// The operations of dsmcc.
#include "ipc/src/dsmcc/tolm_dsmcc_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmDsmccAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "dsmcc",
        "[ipc_dsmcc]",
        "tolm_dsmcc_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"RequestFile", &Adaptor::RequestFile},
            {"ReleaseFile", &Adaptor::ReleaseFile},
        },
        {"RegisterCallback", "UnregisterCallback"},
    };
    return family;
}

}  // namespace hbbtv::test
