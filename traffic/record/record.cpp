#include "traffic/record/record.h"

#include <array>
#include <map>
#include <stdexcept>

#include "common/text/json.h"
#include "traffic/record/base64.h"
#include "wire/endpoint.h"
#include "wire/message.h"
#include "wire/protocol.h"

namespace hbbtv::traffic {

namespace {

constexpr std::array kKinds{"exchange", "connected", "closed", "damaged", "note"};

Json::Value ToJson(const Peer& peer) {
    Json::Value value(Json::objectValue);
    value["pid"] = peer.pid;
    value["uid"] = peer.uid;
    value["name"] = peer.name;
    return value;
}

Json::Value ToJson(const Message& message) {
    Json::Value value(Json::objectValue);
    value["type"] = message.type;
    value["port"] = message.port;
    value["size"] = message.size;
    if (message.Readable()) {
        value["json"] = message.json;
    } else {
        value["base64"] = Base64(message.raw);
    }
    return value;
}

// Reads a member, which must have the type if it is there.
const Json::Value& Member(const Json::Value& object, const char* key, bool (Json::Value::*is)() const,
                          const char* type) {
    const Json::Value& value = object[key];
    if (!value.isNull() && !(value.*is)()) throw std::runtime_error("\"" + std::string(key) + "\" is not " + type);
    return value;
}

std::string Text(const Json::Value& object, const char* key) {
    return Member(object, key, &Json::Value::isString, "a string").asString();
}

uint64_t Count(const Json::Value& object, const char* key) {
    return Member(object, key, &Json::Value::isUInt64, "a count").asUInt64();
}

int Number(const Json::Value& object, const char* key) {
    return Member(object, key, &Json::Value::isInt, "a number").asInt();
}

unsigned Unsigned(const Json::Value& object, const char* key) {
    return Member(object, key, &Json::Value::isUInt, "a count below 2^32").asUInt();
}

bool Flag(const Json::Value& object, const char* key) {
    return Member(object, key, &Json::Value::isBool, "true or false").asBool();
}

const Json::Value& Object(const Json::Value& object, const char* key) {
    return Member(object, key, &Json::Value::isObject, "an object");
}

Peer PeerOf(const Json::Value& value) {
    return {Number(value, "pid"), Unsigned(value, "uid"), Text(value, "name")};
}

Message MessageOf(const Json::Value& value) {
    Message message;
    message.type = Number(value, "type");
    message.port = Number(value, "port");
    message.size = Unsigned(value, "size");
    message.json = value["json"];
    if (!message.Readable()) message.raw = FromBase64(Text(value, "base64"));
    return message;
}

Record::Kind KindOf(const std::string& name) {
    for (size_t i = 0; i < kKinds.size(); ++i) {
        if (name == kKinds[i]) return static_cast<Record::Kind>(i);
    }
    throw std::runtime_error("\"kind\" is not one of a record");
}

// Returns the endpoint of a socket by the name of its file.
const Endpoint* EndpointOf(const std::string& socket) {
    static const std::map<std::string, Endpoint> endpoints = [] {
        std::map<std::string, Endpoint> byName;
        for (const Endpoint& endpoint : AllEndpoints()) byName.emplace(endpoint.socket, endpoint);
        return byName;
    }();
    const auto found = endpoints.find(socket);
    return found == endpoints.end() ? nullptr : &found->second;
}

}  // namespace

std::string NameOf(Record::Kind kind) {
    return kKinds[static_cast<size_t>(kind)];
}

Json::Value ToJson(const Record& record) {
    Json::Value line(Json::objectValue);
    line["number"] = static_cast<Json::UInt64>(record.number);
    line["kind"] = NameOf(record.kind);
    record.time.AddTo(line);
    line["connection"] = static_cast<Json::UInt64>(record.connection);
    line["socket"] = record.socket;
    line["family"] = record.family;
    line["event"] = record.event;
    if (record.kind == Record::Kind::Exchange || record.kind == Record::Kind::Damaged) {
        line["operation"] = record.operation;
        line["message"] = ToJson(record.message);
    }
    if (record.code) line["code"] = *record.code;
    if (record.reply) line["reply"] = ToJson(*record.reply);
    if (record.duration) line["duration_us"] = static_cast<Json::UInt64>(*record.duration);
    if (record.status) line["status"] = *record.status;
    if (record.open) line["open"] = true;
    if (record.library.pid != 0) line["library"] = ToJson(record.library);
    if (record.platform.pid != 0) line["platform"] = ToJson(record.platform);
    if (!record.rule.empty()) line["rule"] = record.rule;
    if (!record.note.empty()) line["note"] = record.note;
    return line;
}

Record FromJson(const Json::Value& line) {
    if (!line.isObject()) throw std::runtime_error("it is not an object");
    for (const char* key : {"number", "kind", "wall_us", "monotonic_us"}) {
        if (!line.isMember(key)) throw std::runtime_error("\"" + std::string(key) + "\" is missing");
    }
    Record record;
    record.number = Count(line, "number");
    record.kind = KindOf(Text(line, "kind"));
    record.time = TimeStamp(Count(line, "wall_us"), Count(line, "monotonic_us"));
    record.connection = Count(line, "connection");
    record.socket = Text(line, "socket");
    record.family = Text(line, "family");
    record.event = Flag(line, "event");
    record.operation = Text(line, "operation");
    record.message = MessageOf(Object(line, "message"));
    if (line.isMember("code")) record.code = Number(line, "code");
    if (line.isMember("reply")) record.reply = MessageOf(Object(line, "reply"));
    if (line.isMember("duration_us")) record.duration = Count(line, "duration_us");
    if (line.isMember("status")) record.status = Number(line, "status");
    record.open = Flag(line, "open");
    record.library = PeerOf(Object(line, "library"));
    record.platform = PeerOf(Object(line, "platform"));
    record.rule = Text(line, "rule");
    record.note = Text(line, "note");
    return record;
}

void SetPayload(Message& message, const std::string& payload) {
    message.json = Json::Value();
    message.raw.clear();
    try {
        message.json = ParseJson(payload);
    } catch (const BadJson&) {
        // The library's reply "null" is kept as bytes, too.
    }
    if (!message.Readable()) message.raw = payload;
}

std::string PayloadOf(const Message& message) {
    return message.Readable() ? WireText(message.json) : message.raw;
}

void Identify(Record& record, const std::string& socket) {
    record.socket = socket;
    const Endpoint* endpoint = EndpointOf(socket);
    if (endpoint == nullptr) return;
    record.family = endpoint->family;
    record.event = !endpoint->ofPlatform;
    if (!record.message.json.isObject()) return;
    const WireFamily& family = FindFamily(record.family);
    const Json::Value* entry =
        record.event ? family.EventOf(record.message.json) : family.RequestOf(record.message.json);
    if (entry == nullptr) return;
    record.operation = (*entry)["name"].asString();
    record.code = (*entry)["code"].asInt();
}

}  // namespace hbbtv::traffic
