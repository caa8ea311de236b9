// The operations of capabilities.
#include "ipc/src/plugin/tolm_capabilities_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmCapabilitiesAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "capabilities",
        "[ipc_capabilities]",
        "tolm_capabilities_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            Row("GetXmlCapabilities", &Adaptor::GetXmlCapabilities).FailsWithMinusOne(),
            {"GetExtraSDVideoDecodes", &Adaptor::GetExtraSDVideoDecodes},
            {"GetExtraHDVideoDecodes", &Adaptor::GetExtraHDVideoDecodes},
            {"HasCapability", &Adaptor::HasCapability},
            Row("GetTerminalCapability", &Adaptor::GetTerminalCapability).FailsWithMinusOne(),
        },
    };
    return family;
}

}  // namespace hbbtv::test
