// The wire as data: the files of protocol/, which are built into the program.
#pragma once

#include <json/value.h>

#include <set>
#include <string>
#include <vector>

namespace hbbtv {

// A family of platform objects. Its requests begin with the member that all of them share, where there is one.
struct WireFamily {
    std::string name;      // "channel_config"
    Json::Value protocol;  // its file

    // Returns null when there is none. The letter case of the name does not matter, nor do its underscores.
    const Json::Value* Operation(const std::string& operation) const;

    std::set<std::string> OperationNames() const;

    // Returns what this method of the family's HIDL interface sends: the operation that names it as its "method", else
    // the one of the same name. Null when there is none.
    const Json::Value* OperationOf(const std::string& method) const;

    // Finds an event by code ("5", "mediasync:5"), name, or the client's callback method. Throws Failure(kUsage).
    const Json::Value& FindEvent(const std::string& event) const;
};

// All families, by name.
const std::vector<WireFamily>& WireFamilies();

// Finds a family by its name or that of its HIDL interface. Throws Failure(kUsage) with the nearest name.
const WireFamily& FindFamily(const std::string& name);

// Whether this is the HIDL interface of the family: "channel_config", "IChannelConfig" and "ChannelConfig" are the
// same name.
bool IsInterfaceOf(const std::string& interface, const std::string& family);

// Returns the name in lower case, without underscores.
std::string FoldedName(const std::string& name);

// The files of protocol/, one line each.
extern const char* const kProtocol;

}  // namespace hbbtv
