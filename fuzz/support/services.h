// The services of the library, in this process, with a client that has registered for everything.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hwbinder/IBinder.h>
#include <json/value.h>

#include <string>
#include <vector>

#include "package/bindings.h"

namespace hbbtv::fuzz {

struct Service {
    using IBase = android::hidl::base::V1_0::IBase;

    std::string interface;  // "IChannel"
    android::sp<IBase> object;

    // Returns the proxy of a remote object.
    android::sp<IBase> (*proxyOf)(const android::sp<android::hardware::IBinder>& remote);
};

const std::vector<Service>& Services();
const Service& ServiceOf(const std::string& interface);

// The callback objects of UsualClient, by interface. They have no proxies.
const std::vector<Service>& Clients();

// Calls a method, given as "IChannel.GetOnid", of an object. The arguments must fit.
CallOutcome CallMethod(Service::IBase& object, const std::string& interface, const std::string& method,
                       const Json::Value& arguments);

// Registers UsualClient for all events of all services.
void RegisterClient();

// Names of all methods of the services.
const std::vector<std::string>& MethodNames();

}  // namespace hbbtv::fuzz
