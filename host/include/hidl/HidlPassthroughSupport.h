// Wraps an object of this process, so that its one-way methods return immediately, like those of a remote object.
#pragma once

#include <hidl/HidlSupport.h>

namespace android::hardware::details {

// Returns the wrapper. If the interface is unknown in this process, logs an error and returns null.
sp<::android::hidl::base::V1_0::IBase> wrapPassthroughInternal(const sp<::android::hidl::base::V1_0::IBase>& object);

// Returns proxies and null unchanged.
template <typename IType>
sp<IType> wrapPassthrough(sp<IType> object) {
    if (object == nullptr || object->isRemote()) return object;
    const sp<::android::hidl::base::V1_0::IBase> wrapper = wrapPassthroughInternal(object);
    return static_cast<IType*>(wrapper.get());
}

}  // namespace android::hardware::details
