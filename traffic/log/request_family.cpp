#include "traffic/log/request_family.h"

#include <algorithm>

#include "traffic/view/members.h"
#include "wire/check.h"
#include "wire/endpoint.h"
#include "wire/protocol.h"

namespace hbbtv::traffic {

namespace {

bool HasTypeOf(const WireFamily& family, const Json::Value& members) {
    const Json::Value& type = family.protocol["envelope"]["type"];
    return type.isNull() || members[type["key"].asString()] == type["value"];
}

bool HasMembers(const Json::Value& operation, const Json::Value& members) {
    const Json::Value& known = operation["request"];
    for (const std::string& key : members.getMemberNames()) {
        const auto is = [&key](const Json::Value& member) { return IsKey(key, member["key"].asString()); };
        if (std::none_of(known.begin(), known.end(), is)) return false;
    }
    return true;
}

// Returns the only family with an operation that has all the members, and adds its type and code.
const WireFamily* Complete(Json::Value& members) {
    const WireFamily* found = nullptr;
    Json::Value code;
    for (const WireFamily& family : WireFamilies()) {
        for (const Json::Value& operation : family.protocol["operations"]) {
            if (!operation.isMember("code") || !HasMembers(operation, members)) continue;
            if (found != nullptr) return nullptr;
            found = &family;
            code = operation["code"];
        }
    }
    if (found == nullptr) return nullptr;
    const Json::Value& envelope = found->protocol["envelope"];
    if (!envelope["type"].isNull()) members[envelope["type"]["key"].asString()] = envelope["type"]["value"];
    members[envelope["code"]["key"].asString()] = code;
    return found;
}

}  // namespace

// Some families have the same type; the code, or else the members, tell them apart.
std::string SocketOfRequest(Json::Value& members) {
    const WireFamily* best = nullptr;
    size_t fewest = 0;
    for (const WireFamily& family : WireFamilies()) {
        const Json::Value* const operation = HasTypeOf(family, members) ? family.RequestOf(members) : nullptr;
        if (operation == nullptr) continue;
        const size_t wrong = CheckRequest(family, *operation, members).size();
        if (best != nullptr && wrong >= fewest) continue;
        best = &family;
        fewest = wrong;
    }
    if (best == nullptr && !members.empty()) best = Complete(members);
    return best == nullptr ? "" : RequestsOf(*best).socket;
}

}  // namespace hbbtv::traffic
