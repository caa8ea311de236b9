// Receives notifications of registrations on the device. The host does not have a service manager, so it is never
// called here; the type exists because every generated interface refers to it.
#pragma once

#include <android/hidl/base/1.0/IBase.h>

namespace android::hidl::manager::V1_0 {

struct IServiceNotification : public ::android::hidl::base::V1_0::IBase {
    virtual ::android::hardware::Return<void> onRegistration(const ::android::hardware::hidl_string& fqName,
                                                             const ::android::hardware::hidl_string& name,
                                                             bool preexisting) = 0;
};

}  // namespace android::hidl::manager::V1_0
