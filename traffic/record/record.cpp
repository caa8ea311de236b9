#include "traffic/record/record.h"

#include <array>
#include <map>
#include <stdexcept>

#include "common/text/base64.h"
#include "common/text/json.h"
#include "wire/endpoint.h"
#include "wire/message.h"
#include "wire/protocol.h"

namespace hbbtv::traffic {

namespace {

constexpr std::array kKinds{"exchange", "connected", "closed", "damaged", "note"};

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

Json::Value ToJson(const Peer& peer) {
    Json::Value value(Json::objectValue);
    value["pid"] = peer.pid;
    value["uid"] = peer.uid;
    value["name"] = peer.name;
    return value;
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

Record::Kind KindOf(const std::string& name) {
    for (size_t i = 0; i < kKinds.size(); ++i) {
        if (name == kKinds[i]) return static_cast<Record::Kind>(i);
    }
    throw std::runtime_error("\"kind\" is not one of a record");
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
