// Wrapping of an object of this process, so that its one-way methods return at once as those of a remote one do.
#pragma once

#include <hidl/HidlSupport.h>

namespace android {
namespace hardware {
namespace details {

// The wrapper, or null with a log line when the interface is not known in this process.
sp<::android::hidl::base::V1_0::IBase> wrapPassthroughInternal(const sp<::android::hidl::base::V1_0::IBase>& object);

// Proxies and null are given back as they are.
template <typename IType>
sp<IType> wrapPassthrough(sp<IType> object) {
    if (object == nullptr || object->isRemote()) return object;
    const sp<::android::hidl::base::V1_0::IBase> wrapper = wrapPassthroughInternal(object);
    return static_cast<IType*>(wrapper.get());
}

}  // namespace details
}  // namespace hardware
}  // namespace android
