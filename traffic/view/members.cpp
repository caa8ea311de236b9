#include "traffic/view/members.h"

#include <algorithm>
#include <cctype>
#include <map>

#include "common/text/pointer_text.h"
#include "wire/protocol.h"

namespace hbbtv::traffic {

namespace {

constexpr uint64_t kHeader = 12;

using Entries = std::map<std::string, const Json::Value*>;

// Entries by name: a record has been identified already, so that its code need not be looked for again.
const Entries& EntriesOf(const std::string& family, bool events) {
    static const auto all = [] {
        std::map<std::pair<std::string, bool>, Entries> map;
        for (const WireFamily& wire : WireFamilies()) {
            for (const Json::Value& entry : wire.protocol["operations"]) {
                map[{wire.name, false}].emplace(entry["name"].asString(), &entry);
            }
            for (const Json::Value& entry : wire.protocol["events"]) {
                map[{wire.name, true}].emplace(entry["name"].asString(), &entry);
            }
        }
        return map;
    }();
    static const Entries none;
    const auto found = all.find({family, events});
    return found == all.end() ? none : found->second;
}

}  // namespace

const Json::Value* ProtocolEntry(const Record& record) {
    if (record.family.empty() || record.operation.empty()) return nullptr;
    const Entries& entries = EntriesOf(record.family, record.event);
    const auto found = entries.find(record.operation);
    return found == entries.end() ? nullptr : found->second;
}

const std::vector<std::string>& EnvelopeKeys(const Record& record) {
    static const auto all = [] {
        std::map<std::pair<std::string, bool>, std::vector<std::string>> map;
        for (const WireFamily& family : WireFamilies()) {
            for (const bool events : {false, true}) {
                const Json::Value& envelope = family.protocol[events ? "event_envelope" : "envelope"];
                for (const char* part : {"type", "code"}) {
                    if (!envelope.isObject() || !envelope[part].isObject()) continue;
                    map[{family.name, events}].push_back(envelope[part]["key"].asString());
                }
            }
        }
        return map;
    }();
    static const std::vector<std::string> none;
    const auto found = record.operation.empty() ? all.end() : all.find({record.family, record.event});
    return found == all.end() ? none : found->second;
}

std::optional<uint64_t> HandleIn(const Json::Value& value) {
    if (!value.isString()) return std::nullopt;
    const char* begin = nullptr;
    const char* end = nullptr;
    value.getString(&begin, &end);
    const size_t length = static_cast<size_t>(end - begin);
    if (length < 3 || length > 18 || begin[0] != '0' || (begin[1] != 'x' && begin[1] != 'X')) return std::nullopt;
    const auto isDigit = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; };
    if (!std::all_of(begin + 2, end, isDigit)) return std::nullopt;
    const std::optional<uint64_t> handle = ParsePointer(std::string(begin, end));
    return handle && *handle != 0 ? handle : std::nullopt;
}

bool HasHandle(const Json::Value& value, uint32_t handle) {
    if (value.isObject() || value.isArray()) {
        return std::any_of(value.begin(), value.end(), [handle](const Json::Value& v) { return HasHandle(v, handle); });
    }
    const std::optional<uint64_t> found = HandleIn(value);
    return found && static_cast<uint32_t>(*found) == handle;
}

bool IsKey(const std::string& key, const std::string& ofProtocol) {
    const size_t number = ofProtocol.find("%d");
    if (number == std::string::npos) return key == ofProtocol;
    const std::string tail = ofProtocol.substr(number + 2);
    if (key.size() <= number + tail.size() || key.compare(0, number, ofProtocol, 0, number) != 0) return false;
    const size_t end = key.size() - tail.size();
    return key.compare(end, std::string::npos, tail) == 0 &&
           std::all_of(key.begin() + static_cast<std::ptrdiff_t>(number),
                       key.begin() + static_cast<std::ptrdiff_t>(end), [](char c) { return c >= '0' && c <= '9'; });
}

bool IsError(const Record& record) {
    if (record.kind == Record::Kind::Damaged) return true;
    if (record.kind != Record::Kind::Exchange) return false;
    if (record.status) return *record.status != 0;
    if (!record.WantsReply() || record.open) return false;
    return !record.reply || !record.reply->json.isObject();
}

uint64_t BytesOf(const Record& record) {
    if (record.kind == Record::Kind::Damaged) return record.message.raw.size();
    if (record.kind != Record::Kind::Exchange) return 0;
    return kHeader + record.message.size + (record.reply ? kHeader + record.reply->size : 0);
}

std::string FullName(const Record& record) {
    const std::string family = record.family.empty() ? record.socket : record.family;
    if (record.kind != Record::Kind::Exchange) return family;
    if (!record.operation.empty()) return family + "." + record.operation;
    return family + (record.code ? ".code " + std::to_string(*record.code) : ".?");
}

}  // namespace hbbtv::traffic
