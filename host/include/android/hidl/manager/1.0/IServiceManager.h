// The service manager of the device, as far as generated code names it. The host has none: defaultServiceManager()
// gives null, and registerForNotifications() of every interface therefore answers false.
#pragma once

#include <android/hidl/manager/1.0/IServiceNotification.h>

namespace android {
namespace hidl {
namespace manager {
namespace V1_0 {

struct IServiceManager : public ::android::hidl::base::V1_0::IBase {
    virtual ::android::hardware::Return<bool> registerForNotifications(
        const ::android::hardware::hidl_string& fqName, const ::android::hardware::hidl_string& name,
        const ::android::sp<IServiceNotification>& callback) = 0;
};

}  // namespace V1_0
}  // namespace manager
}  // namespace hidl
}  // namespace android
