#include "LocalSystem.h"

#include "ipc/src/plugin/tolm_local_system_adaptor_ipc.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmLocalSystemAdaptorIpc;

Return<void> LocalSystem::GetDeviceID(GetDeviceID_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetDeviceID);
}

Return<void> LocalSystem::GetVendorName(GetVendorName_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetVendorName);
}

Return<void> LocalSystem::GetModelName(GetModelName_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetModelName);
}

Return<void> LocalSystem::GetFamilyName(GetFamilyName_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetFamilyName);
}

Return<void> LocalSystem::GetSoftwareVersion(GetSoftwareVersion_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetSoftwareVersion);
}

Return<void> LocalSystem::GetHardwareVersion(GetHardwareVersion_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetHardwareVersion);
}

Return<void> LocalSystem::GetSerialNumber(GetSerialNumber_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetSerialNumber);
}

// The client receives a bool here, but the number for CI Plus.
Return<void> LocalSystem::GetPvrEnabled(GetPvrEnabled_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetPvrEnabled);
}

Return<void> LocalSystem::GetCiplusEnabled(GetCiplusEnabled_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetCiplusEnabled);
}

ILocalSystem* HIDL_FETCH_ILocalSystem(const char*) {
    return new LocalSystem();
}

}  // namespace vantorel::hardware::hbbtv::implementation
