// Whether an object has an interface, found out by asking it.
#pragma once

#include <hidl/Status.h>

namespace android {
namespace hardware {
namespace details {

// Compares `castTo` with the interface chain of the object. A call that fails gives false, or its failure when
// `emitError` is set.
Return<bool> canCastInterface(::android::hidl::base::V1_0::IBase* object, const char* castTo, bool emitError = false);

// The name of the object's own interface, empty when it cannot be had.
std::string getDescriptor(::android::hidl::base::V1_0::IBase* object);

}  // namespace details
}  // namespace hardware
}  // namespace android
