// The wire as data: the files of protocol/, compiled into the program.
#pragma once

#include <json/value.h>

#include <set>
#include <string>
#include <vector>

namespace hbbtv {

// A family of platform objects. Each request begins with the member that all of them share, if there is one.
struct WireFamily {
    std::string name;      // "channel_config"
    Json::Value protocol;  // its file

    // Returns null if there is none. Ignores case and underscores.
    const Json::Value* Operation(const std::string& operation) const;

    std::set<std::string> OperationNames() const;

    // Returns the operation that this method of the family's HIDL interface sends: the one that names it as its
    // "method", else the one of the same name, else null.
    const Json::Value* OperationOf(const std::string& method) const;

    // Returns the operation that a request of the library asks for, or null. If two have the same code, it is the first
    // one whose members the request has.
    const Json::Value* RequestOf(const Json::Value& message) const;

    // Finds an event by code ("5", "mediasync:5"), name, or the client's callback method. Throws Failure(kUsage).
    const Json::Value& FindEvent(const std::string& event) const;

    // Returns the event that a message of the platform is, or null.
    const Json::Value* EventOf(const Json::Value& message) const;
};

// Returns all families, sorted by name.
const std::vector<WireFamily>& WireFamilies();

// Finds a family by its name or that of its HIDL interface. Throws Failure(kUsage) with the nearest name.
const WireFamily& FindFamily(const std::string& name);

// Returns whether this is the HIDL interface of the family; "channel_config", "IChannelConfig" and "ChannelConfig" are
// equivalent.
bool IsInterfaceOf(const std::string& interface, const std::string& family);

// Returns the name in lower case, without underscores.
std::string FoldedName(const std::string& name);

}  // namespace hbbtv
