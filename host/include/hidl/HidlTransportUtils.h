// Asks an object which interfaces it implements.
#pragma once

#include <hidl/Status.h>

namespace android::hardware::details {

// Returns whether `castTo` is in the interface chain of the object. If the call fails, returns the failure if
// `emitError` is set, and false otherwise.
Return<bool> canCastInterface(::android::hidl::base::V1_0::IBase* object, const char* castTo, bool emitError = false);

// Returns the name of the object's own interface, or an empty string on failure.
std::string getDescriptor(::android::hidl::base::V1_0::IBase* object);

}  // namespace android::hardware::details
