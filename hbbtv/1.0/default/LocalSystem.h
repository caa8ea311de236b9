// The identity of this television: ILocalSystem over the platform's local-system adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/ILocalSystem.h>

#include "utils/include/tolm_debug.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::hardware::Return;
using V1_0::ILocalSystem;

class LocalSystem : public TolmService<ILocalSystem> {
  public:
    Return<void> GetDeviceID(GetDeviceID_cb _hidl_cb) override;
    Return<void> GetVendorName(GetVendorName_cb _hidl_cb) override;
    Return<void> GetModelName(GetModelName_cb _hidl_cb) override;
    Return<void> GetFamilyName(GetFamilyName_cb _hidl_cb) override;
    Return<void> GetSoftwareVersion(GetSoftwareVersion_cb _hidl_cb) override;
    Return<void> GetHardwareVersion(GetHardwareVersion_cb _hidl_cb) override;
    Return<void> GetSerialNumber(GetSerialNumber_cb _hidl_cb) override;
    Return<void> GetPvrEnabled(GetPvrEnabled_cb _hidl_cb) override;
    Return<void> GetCiplusEnabled(GetCiplusEnabled_cb _hidl_cb) override;
};

extern "C" ILocalSystem* HIDL_FETCH_ILocalSystem(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
