#include "shown_event.h"

#include <cstdint>
#include <cstdio>
#include <vector>

#include "lenient_readings.h"

namespace hbbtv::test {

namespace {

std::string ShowBytes(const Json::Value& list) {
    std::string text;
    for (const Json::Value& value : list) {
        char byte[4];
        std::snprintf(byte, sizeof(byte), "%s%02x", text.empty() ? "" : " ", value.asUInt() & 0xff);
        text += byte;
    }
    return text;
}

std::string ShowValue(const std::string& type, const Json::Value& value) {
    if (type == "int") return Show(value.asInt());
    if (type == "uint") return Show(value.asUInt());
    if (type == "int64") return std::to_string(value.asInt64());
    if (type == "uint64") return std::to_string(value.asUInt64());
    if (type == "double") return Show(value.asDouble());
    if (type == "bool") return Show(value.asBool());
    if (type == "pointer") return Show(reinterpret_cast<const void*>(static_cast<uintptr_t>(value.asUInt64())));
    if (type == "array") {
        std::vector<std::string> elements;
        for (const Json::Value& element : value) elements.push_back(element.asString());
        return Show(elements);
    }
    return Show(value.asString());
}

}  // namespace

ShownMembers ShownOf(const ProtocolEvent& event) {
    ShownMembers shown;
    for (const Json::Value& member : event.Definition()["members"]) {
        const std::string key = member["key"].asString();
        if (member.isMember("repeat")) {
            const Json::Value& list = event.Values()[key.substr(0, key.find("%d"))];
            shown[key] = ShowBytes(list);
            shown[member["repeat"].asString()] = Show(list.size());
        } else if (shown.count(key) == 0) {
            shown[key] = ShowValue(member["type"].asString(), event.Values()[key]);
        }
    }
    return shown;
}

}  // namespace hbbtv::test
