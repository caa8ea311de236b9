// The operations of application private data.
#include "ipc/src/plugin/tolm_application_private_data_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmApplicationPrivateDataAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "application_private_data",
        "[ipc_app_priv]",
        "tolm_application_private_data_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"getFreeMem", &Adaptor::getFreeMem},
            {"getCurrentChannel", &Adaptor::getCurrentChannel},
        },
    };
    return family;
}

}  // namespace hbbtv::test
