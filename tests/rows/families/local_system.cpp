// The operations of local system.
#include "ipc/src/plugin/tolm_local_system_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmLocalSystemAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "local_system",
        "[ipc_configure]",
        "tolm_local_system_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"GetDeviceID", &Adaptor::GetDeviceID},
            {"GetVendorName", &Adaptor::GetVendorName},
            {"GetModelName", &Adaptor::GetModelName},
            {"GetFamilyName", &Adaptor::GetFamilyName},
            {"GetSoftwareVersion", &Adaptor::GetSoftwareVersion},
            {"GetHardwareVersion", &Adaptor::GetHardwareVersion},
            {"GetSerialNumber", &Adaptor::GetSerialNumber},
            {"GetPvrEnabled", &Adaptor::GetPvrEnabled},
            {"GetCiplusEnabled", &Adaptor::GetCiplusEnabled},
        },
    };
    return family;
}

}  // namespace hbbtv::test
