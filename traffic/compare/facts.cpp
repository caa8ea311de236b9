#include "traffic/compare/facts.h"

#include <map>
#include <tuple>

#include "common/text/pointer_text.h"
#include "traffic/view/members.h"
#include "wire/message.h"
#include "wire/protocol.h"

namespace hbbtv::traffic {

namespace {

MessageFacts ReadFacts(const std::string& family, const std::string& operation, bool event, Side side) {
    Record record;
    record.family = family;
    record.operation = operation;
    record.event = event;
    MessageFacts facts;
    const Json::Value* entry = ProtocolEntry(record);
    if (entry == nullptr) return facts;
    if (side == Side::Reply) {
        facts.Add((*entry)["reply"]);
    } else {
        facts.Add(event ? EventMembers(FindFamily(family), *entry) : (*entry)["request"]);
    }
    return facts;
}

}  // namespace

void MessageFacts::Add(const Json::Value& members) {
    for (const Json::Value& member : members) {
        MemberFacts facts;
        if (member["type"] == "pointer") facts.kind = member.get("handle", "context").asString();
        facts.clock = member["clock"].asBool();
        if (facts.kind.empty() && !facts.clock) continue;
        mKnown.push_back({member["key"].asString(), facts});
    }
}

MemberFacts MessageFacts::Of(const std::string& key) const {
    for (const Known& known : mKnown) {
        if (IsKey(key, known.key)) return known.facts;
    }
    return {};
}

const MessageFacts& FactsOf(const std::string& family, const std::string& operation, bool event, Side side) {
    static std::map<std::tuple<std::string, std::string, bool, Side>, MessageFacts> known;
    const auto key = std::make_tuple(family, operation, event, side);
    const auto found = known.find(key);
    if (found != known.end()) return found->second;
    return known.emplace(key, ReadFacts(family, operation, event, side)).first->second;
}

void ForEachHandle(const MessageFacts& facts, const Json::Value& message,
                   const std::function<void(const std::string&, const std::string&, uint32_t)>& visit) {
    if (!message.isObject()) return;
    for (const std::string& key : message.getMemberNames()) {
        const std::string kind = facts.Of(key).kind;
        if (kind.empty()) continue;
        const std::optional<uint32_t> handle = ReadHandle(message[key]);
        if (handle && *handle != 0) visit(key, kind, *handle);
    }
}

std::optional<uint32_t> ReadHandle(const Json::Value& value) {
    if (!value.isString()) return std::nullopt;
    const std::optional<uint64_t> pointer = ParsePointer(value.asString());
    if (!pointer) return std::nullopt;
    return static_cast<uint32_t>(*pointer);
}

}  // namespace hbbtv::traffic
