// Registers and finds services. There is no broker process: a directory on disk maps the name of a service to the
// socket of its process.
#pragma once

#include <android/hidl/manager/1.0/IServiceManager.h>
#include <hidl/HidlTransportSupport.h>

#include <string>

namespace android::hardware {

// Returns null: the host does not have a service manager.
sp<::android::hidl::manager::V1_0::IServiceManager> defaultServiceManager();

namespace details {

// Calls a passthrough library's function, which returns a new object or null, by the function's own type.
using CallFetch = ::android::hidl::base::V1_0::IBase* (*)(void* function, const char* instance);

// If `callFetch`, returns the implementation from a passthrough library. Otherwise returns the registered object if it
// is in this process, or a proxy. If the service is not registered, waits for it if `retry`, and returns null
// otherwise.
sp<::android::hidl::base::V1_0::IBase> getRawServiceInternal(const std::string& descriptor, const std::string& instance,
                                                             bool retry, CallFetch callFetch);

// Registers a service, replacing services of the same names. Returns OK, UNEXPECTED_NULL, or UNKNOWN_ERROR after
// logging the reason.
status_t registerAsServiceInternal(const sp<::android::hidl::base::V1_0::IBase>& service, const std::string& name);

template <typename BpType, typename IType = typename BpType::Pure>
sp<IType> getServiceInternal(const std::string& instance, bool retry, bool getStub) {
    constexpr CallFetch kCallFetch = [](void* function, const char* name) -> ::android::hidl::base::V1_0::IBase* {
        return reinterpret_cast<IType* (*)(const char*)>(function)(name);
    };
    const sp<::android::hidl::base::V1_0::IBase> base =
        getRawServiceInternal(IType::descriptor, instance, retry, getStub ? kCallFetch : nullptr);
    if (base == nullptr) return nullptr;
    // The interfaces of a remote object have already been checked.
    if (base->isRemote()) return new BpType(getOrCreateCachedBinder(base.get()));
    return IType::castFrom(base).withDefault(nullptr);
}

}  // namespace details
}  // namespace android::hardware
