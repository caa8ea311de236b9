#include "traffic/compare/difference.h"

#include <set>

#include "common/text/json.h"
#include "common/text/pointer_text.h"
#include "common/text/quote.h"

namespace hbbtv::traffic {

namespace {

constexpr size_t kLongestValue = 200;

std::string Short(const Json::Value& value) {
    const std::string text = WriteJson(value);
    return text.size() <= kLongestValue ? text : text.substr(0, kLongestValue) + "...";
}

bool SameValue(const Json::Value& a, const Json::Value& b) {
    return a.isNumeric() && b.isNumeric() ? a.asDouble() == b.asDouble() : a == b;
}

// Adds how the handle of a member differs.
void CompareHandles(const std::string& key, const std::string& kind, uint32_t recorded, uint32_t live,
                    const Handles& handles, std::vector<Difference>& differences) {
    if ((recorded == 0 && live == 0) || (recorded != 0 && live != 0 && handles.Fit(kind, recorded, live))) return;
    const auto name = [](uint32_t handle) { return handle == 0 ? "null" : HexText(handle); };
    std::string text = Quoted(key) + " is " + name(live);
    const std::set<uint32_t> others = handles.Recorded(kind, live);
    if (live != 0 && !others.empty()) text += ", which is " + name(*others.begin()) + " of the recording";
    differences.push_back({text + ", in the recording " + name(recorded), false});
}

void CompareMember(const MessageFacts& facts, const std::string& key, const Json::Value& recorded,
                   const Json::Value& live, const Handles& handles, std::vector<Difference>& differences) {
    const MemberFacts member = facts.Of(key);
    if (!recorded.isMember(key)) {
        differences.push_back({Quoted(key) + " is " + Short(live[key]) + ", the recording lacks it", false});
    } else if (!live.isMember(key)) {
        differences.push_back({Quoted(key) + " is missing, in the recording " + Short(recorded[key]), false});
    } else {
        const std::optional<uint32_t> before = ReadHandle(recorded[key]);
        const std::optional<uint32_t> after = ReadHandle(live[key]);
        if (!member.kind.empty() && before && after) {
            CompareHandles(key, member.kind, *before, *after, handles, differences);
        } else if (!SameValue(recorded[key], live[key])) {
            differences.push_back(
                {Quoted(key) + " is " + Short(live[key]) + ", in the recording " + Short(recorded[key]), member.clock});
        }
    }
}

}  // namespace

std::vector<Difference> Differences(const MessageFacts& facts, const Message& recorded, const Message& live,
                                    const Handles& handles) {
    if (!recorded.json.isObject() || !live.json.isObject()) {
        if (recorded.json == live.json && recorded.raw == live.raw) return {};
        const auto text = [](const Message& message) {
            return message.Readable() ? Short(message.json) : Quoted(message.raw.substr(0, kLongestValue));
        };
        return {{"it is " + text(live) + ", in the recording " + text(recorded), false}};
    }
    std::set<std::string> keys;
    for (const Json::Value* message : {&recorded.json, &live.json}) {
        for (const std::string& key : message->getMemberNames()) keys.insert(key);
    }
    std::vector<Difference> differences;
    for (const std::string& key : keys) {
        CompareMember(facts, key, recorded.json, live.json, handles, differences);
    }
    return differences;
}

}  // namespace hbbtv::traffic
