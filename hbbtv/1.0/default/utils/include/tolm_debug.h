// What each service answers to debug, as `lshal debug` calls it: the state of its family.
#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>

namespace tolm {

// Writes what the options ask for to the first descriptor of the handle; see kHelp in tolm_debug.cpp. Gives up after a
// second if the descriptor is not read. `descriptor` is that of the service's interface.
void Debug(const char* descriptor, const ::android::hardware::hidl_handle& handle,
           const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& options);

}  // namespace tolm

// The base of the services: an interface with debug.
template <typename Interface>
class TolmService : public Interface {
  public:
    ::android::hardware::Return<void> debug(
        const ::android::hardware::hidl_handle& handle,
        const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& options) override {
        tolm::Debug(Interface::descriptor, handle, options);
        return ::android::hardware::Void();
    }
};
