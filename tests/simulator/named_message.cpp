#include "named_message.h"

#include <gtest/gtest.h>
#include <json/reader.h>
#include <json/writer.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <stdexcept>

#include "wire/message.h"

namespace hbbtv::test {

namespace {

const Json::Value& WireOf(const WireFamily& family, const std::string& name) {
    const std::string operation = name.substr(name.find('.') + 1);
    for (const Json::Value& candidate : family.protocol["operations"]) {
        if (candidate["name"] == operation) return candidate;
    }
    throw std::invalid_argument("protocol/ has no operation \"" + name + "\"");
}

// "channel" of "channel%d".
std::string NameOf(const Json::Value& member) {
    const std::string key = member["key"].asString();
    return key.substr(0, key.find("%d"));
}

// Returns the keys that a message with these members has, each numbered one as often as the message's own count says.
std::set<std::string> KeysOf(const Json::Value& members, const Json::Value& message) {
    std::set<std::string> keys;
    for (const Json::Value& member : members) {
        const unsigned count = member.isMember("repeat") ? message[member["repeat"].asString()].asUInt() : 1;
        for (unsigned i = 0; i < count; ++i) {
            const std::string key = NameOf(member) + (member.isMember("repeat") ? std::to_string(i) : "");
            keys.insert(key.substr(0, member.get("key_length", Json::UInt(key.size())).asUInt()));
        }
    }
    return keys;
}

std::set<std::string> KeysOf(const Json::Value& message) {
    const auto keys = message.getMemberNames();
    return {keys.begin(), keys.end()};
}

const Json::Value& WireOfEvent(const WireFamily& family, const Json::Value& message) {
    const Json::Value& envelope = family.protocol["event_envelope"];
    const Json::Value& type = envelope["type"];
    for (const Json::Value& event : family.protocol["events"]) {
        const Json::Value& wanted = type.isMember("value") ? type["value"] : event["object"];
        if (!type.isNull() && message[type["key"].asString()] != wanted) continue;
        if (message[envelope["code"]["key"].asString()] == event["code"]) return event;
    }
    throw std::runtime_error("protocol/ has no such event of " + family.name + ": " + message.toStyledString());
}

}  // namespace

Operation::Operation(const std::string& name)
    : mName(name), mFamily(FindFamily(name.substr(0, name.find('.')))), mWire(WireOf(mFamily, name)) {}

bool Operation::Has(const std::string& member) const {
    for (const Json::Value& known : mWire["request"]) {
        if (NameOf(known) == member) return true;
    }
    return false;
}

Json::Value Operation::Request(const Members& members) const {
    Json::Value request = RawRequest(mFamily, mWire["code"], {});
    for (const auto& [name, value] : members) {
        if (!Has(name)) throw std::invalid_argument("\"" + mName + "\" has no member \"" + name + "\"");
    }
    for (const Json::Value& known : mWire["request"]) {
        const auto given = members.find(NameOf(known));
        if (given == members.end()) continue;
        const Json::Value& value = given->second;
        if (!known.isMember("repeat")) {
            request[given->first] = value;
            continue;
        }
        for (Json::ArrayIndex i = 0; i < value.size(); ++i) request[given->first + std::to_string(i)] = value[i];
        request[known["repeat"].asString()] = value.size();
    }
    return request;
}

std::string Operation::ObjectKey() const {
    const Json::Value& first = mWire["request"][0];
    if (first["type"] != "pointer") throw std::invalid_argument("\"" + mName + "\" is not about an object");
    return first["key"].asString();
}

std::string Operation::ValueKey() const {
    const Json::Value& members = mWire["request"];
    if (members.empty()) throw std::invalid_argument("\"" + mName + "\" has no members");
    return members[members.size() - 1]["key"].asString();
}

void Operation::CheckReply(const Json::Value& reply) const {
    std::set<std::string> keys{"ret"};
    if (reply["ret"] == 0) keys.merge(KeysOf(mWire["reply"], reply));
    EXPECT_EQ(KeysOf(reply), keys) << mName;
}

Json::Value Operation::OnlyResult(const Json::Value& reply) const {
    const Json::Value& results = mWire["reply"];
    if (results.size() != 1) throw std::invalid_argument("\"" + mName + "\" does not have one result");
    return reply[results[0]["key"].asString()];
}

Json::Value RawRequest(const WireFamily& family, const Json::Value& code, const Members& members) {
    const Json::Value& envelope = family.protocol["envelope"];
    Json::Value request;
    if (envelope.isMember("type")) request[envelope["type"]["key"].asString()] = envelope["type"]["value"];
    request[envelope["code"]["key"].asString()] = code;
    for (const auto& [name, value] : members) request[name] = value;
    return request;
}

std::vector<std::string> OperationsOf(const std::string& family) {
    std::vector<std::string> names;
    for (const Json::Value& operation : FindFamily(family).protocol["operations"]) {
        names.push_back(family + "." + operation["name"].asString());
    }
    return names;
}

std::vector<std::string> Without(std::vector<std::string> operations, const std::vector<std::string>& others) {
    for (const std::string& other : others) {
        const auto found = std::find(operations.begin(), operations.end(), other);
        if (found == operations.end()) throw std::invalid_argument("not an operation: \"" + other + "\"");
        operations.erase(found);
    }
    return operations;
}

std::vector<int> CodesWithoutOperation(const std::string& family) {
    std::set<int> used;
    for (const Json::Value& operation : FindFamily(family).protocol["operations"]) {
        used.insert(operation["code"].asInt());
    }
    std::vector<int> codes;
    for (int code = -1; code <= *used.rbegin() + 10; ++code) {
        if (used.count(code) == 0) codes.push_back(code);
    }
    return codes;
}

std::string Event::Text() const {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    std::string text = name;
    for (const std::string& key : members.getMemberNames()) {
        text += " " + key + "=" + Json::writeString(builder, members[key]);
    }
    return text;
}

Event ReadEvent(const std::string& familyName, const Frame& message) {
    const WireFamily& family = FindFamily(familyName);
    const Json::Value document = Parsed(message.payload);
    const Json::Value& wire = WireOfEvent(family, document);
    EXPECT_EQ(message.type, wire["forms"][0] == "one-way" ? kOneWay : kRequest) << message.payload;
    Event event{wire["name"].asString(), document};
    for (const char* part : {"type", "code"}) {
        event.members.removeMember(family.protocol["event_envelope"][part]["key"].asString());
    }
    EXPECT_EQ(KeysOf(event.members), KeysOf(EventMembers(family, wire), document)) << message.payload;
    return event;
}

Json::Value Parsed(const std::string& text) {
    Json::Value document;
    std::string errors;
    std::istringstream stream(text);
    if (!Json::parseFromStream(Json::CharReaderBuilder(), stream, &document, &errors)) {
        ADD_FAILURE() << "not JSON: " << text;
        return Json::Value(Json::objectValue);
    }
    return document;
}

}  // namespace hbbtv::test
