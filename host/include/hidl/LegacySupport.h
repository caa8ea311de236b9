// The main program of a service whose implementation is a passthrough library.
#pragma once

#include <hidl/HidlTransportSupport.h>
#include <log/log.h>

#include <cstdlib>
#include <string>

namespace android::hardware {

// Loads the implementation and registers it.
template <class Interface>
status_t registerPassthroughServiceImplementation(const std::string& name = "default") {
    const sp<Interface> service = Interface::getService(name, true /* getStub */);
    if (service == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, "hidl_host", "no passthrough implementation of %s/%s",
                            Interface::descriptor, name.c_str());
        return EXIT_FAILURE;  // the exit code of the main program
    }
    const status_t status = service->registerAsService(name);
    if (status != OK) {
        __android_log_print(ANDROID_LOG_ERROR, "hidl_host", "cannot register %s/%s: %d", Interface::descriptor,
                            name.c_str(), status);
    }
    return status;
}

// Registers the implementation and serves it. Returns only if it could not be registered.
template <class Interface>
status_t defaultPassthroughServiceImplementation(const std::string& name, size_t maxThreads = 1) {
    configureRpcThreadpool(maxThreads, true);
    const status_t status = registerPassthroughServiceImplementation<Interface>(name);
    if (status != OK) return status;
    joinRpcThreadpool();
}
template <class Interface>
status_t defaultPassthroughServiceImplementation(size_t maxThreads = 1) {
    return defaultPassthroughServiceImplementation<Interface>("default", maxThreads);
}

}  // namespace android::hardware
