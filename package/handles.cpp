#include "package/handles.h"

#include <set>

namespace hbbtv {

namespace {

const Type& Element(const Type& type) {
    return type.kind == Type::Kind::Vector ? *type.element : type;
}

void Collect(const Json::Value& members, std::set<std::string>& names) {
    for (const Json::Value& member : members) {
        if (member["type"] != "pointer") continue;
        names.insert(member["key"].asString());
        names.insert(member["out"].asString());
    }
}

// Returns their names on the wire: "channel", and "channelHandle" for what a .hal file calls "channel".
std::set<std::string> HandlesOnTheWire() {
    std::set<std::string> names;
    for (const WireFamily& family : WireFamilies()) {
        for (const Json::Value& operation : family.protocol["operations"]) {
            Collect(operation["request"], names);
            Collect(operation["reply"], names);
        }
        for (const Json::Value& event : family.protocol["events"]) Collect(event["members"], names);
    }
    // Chosen by the caller, and passed like a handle.
    names.insert("context");
    return names;
}

}  // namespace

bool IsHandle(const Parameter& parameter) {
    static const std::set<std::string> names = HandlesOnTheWire();
    if (Element(*parameter.type).name != "int64_t") return false;
    return names.count(parameter.name) != 0 || names.count(parameter.name + "Handle") != 0;
}

}  // namespace hbbtv
