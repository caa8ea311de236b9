// Registering services and finding them. There is no broker process: a directory on disk leads from a service's name to
// the socket of its process.
#pragma once

#include <android/hidl/manager/1.0/IServiceManager.h>
#include <hidl/HidlTransportSupport.h>

#include <string>

namespace android {
namespace hardware {

// Null: the host has no service manager, and with it no notifications of registrations.
sp<::android::hidl::manager::V1_0::IServiceManager> defaultServiceManager();

namespace details {

// `getStub`: the implementation from a passthrough library. Otherwise the registered object itself when it is one of
// this process, else a proxy. Waits for the service when `retry`, else null when it is not there.
sp<::android::hidl::base::V1_0::IBase> getRawServiceInternal(const std::string& descriptor, const std::string& instance,
                                                             bool retry, bool getStub);

// OK, UNEXPECTED_NULL, or UNKNOWN_ERROR with a log line. Replaces what was registered under the same names.
status_t registerAsServiceInternal(const sp<::android::hidl::base::V1_0::IBase>& service, const std::string& name);

template <typename BpType, typename IType = typename BpType::Pure>
sp<IType> getServiceInternal(const std::string& instance, bool retry, bool getStub) {
    const sp<::android::hidl::base::V1_0::IBase> base =
        getRawServiceInternal(IType::descriptor, instance, retry, getStub);
    if (base == nullptr) return nullptr;
    // What came from another process has been asked for its interfaces already.
    if (base->isRemote()) return new BpType(getOrCreateCachedBinder(base.get()));
    return IType::castFrom(base).withDefault(nullptr);
}

}  // namespace details
}  // namespace hardware
}  // namespace android
