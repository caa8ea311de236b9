#include "protocol_events.h"

#include <json/writer.h>

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "lenient_readings.h"
#include "rows.h"
#include "wire/message.h"

namespace hbbtv::test {

namespace {

constexpr unsigned kContext = 0xabcd;

// A list is shown as the bytes that it stands for.
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
    return Show(value.asString());
}

}  // namespace

ProtocolEvent::ProtocolEvent(const std::string& event)
    : mDefinition(UnderTest().Wire().FindEvent(event)),
      mValues(ValuesFor(mDefinition["members"], 100 * (mDefinition["code"].asInt() + 1), kAllBools)) {}

std::string ProtocolEvent::Text() const {
    Json::Value values = mValues;
    values["context"] = kContext;
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, MakeEvent(UnderTest().Wire(), mDefinition, values));
}

ShownMembers ProtocolEvent::Shown() const {
    ShownMembers shown;
    for (const Json::Value& member : mDefinition["members"]) {
        const std::string key = member["key"].asString();
        if (member.isMember("repeat")) {
            const Json::Value& list = mValues[key.substr(0, key.find("%d"))];
            shown[key] = ShowBytes(list);
            shown[member["repeat"].asString()] = Show(list.size());
        } else if (shown.count(key) == 0) {
            shown[key] = ShowValue(member["type"].asString(), mValues[key]);
        }
    }
    return shown;
}

std::string ProtocolEvent::TestName() const {
    return TestNameOf(mDefinition["name"].asString());
}

std::string TestNameOf(const std::string& name) {
    std::string result;
    std::string word;
    for (const char c : name + " ") {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
            word += c;
            continue;
        }
        const auto upper = [](unsigned char l) { return std::isupper(l) != 0; };
        if (std::all_of(word.begin(), word.end(), upper)) {
            for (char& l : word) l = static_cast<char>(std::tolower(static_cast<unsigned char>(l)));
        }
        if (!word.empty()) word[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(word[0])));
        result += word;
        word.clear();
    }
    return result;
}

}  // namespace hbbtv::test
