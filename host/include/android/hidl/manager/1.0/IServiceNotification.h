// Told about registrations on the device. The host has no service manager process, so nobody calls it here; the type
// exists because every generated interface names it.
#pragma once

#include <android/hidl/base/1.0/IBase.h>

namespace android {
namespace hidl {
namespace manager {
namespace V1_0 {

struct IServiceNotification : public ::android::hidl::base::V1_0::IBase {
    virtual ::android::hardware::Return<void> onRegistration(const ::android::hardware::hidl_string& fqName,
                                                             const ::android::hardware::hidl_string& name,
                                                             bool preexisting) = 0;
};

}  // namespace V1_0
}  // namespace manager
}  // namespace hidl
}  // namespace android
