// The part of the device's service manager that generated code refers to. The host does not have one:
// defaultServiceManager() returns null, so registerForNotifications() of every interface returns false.
#pragma once

#include <android/hidl/manager/1.0/IServiceNotification.h>

namespace android::hidl::manager::V1_0 {

struct IServiceManager : public ::android::hidl::base::V1_0::IBase {
    virtual ::android::hardware::Return<bool> registerForNotifications(
        const ::android::hardware::hidl_string& fqName, const ::android::hardware::hidl_string& name,
        const ::android::sp<IServiceNotification>& callback) = 0;
};

}  // namespace android::hidl::manager::V1_0
