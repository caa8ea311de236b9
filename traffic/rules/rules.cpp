#include "traffic/rules/rules.h"

#include <algorithm>
#include <sstream>

#include "common/failure.h"
#include "common/frame.h"
#include "common/text/counted.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "traffic/understanding/frame_walk.h"
#include "wire/message.h"

namespace hbbtv::traffic {

namespace {

// Returns the message of the record that the bytes are.
const Message& MessageIn(const Record& record, bool reply) {
    return reply ? *record.reply : record.message;
}

std::string Framed(const Message& like, int32_t type, const Json::Value& json) {
    return Encode({type, like.port, WireText(json)});
}

void Corrupt(Rule& rule, std::string& bytes) {
    if (bytes.size() <= kHeaderSize) return;
    const uint64_t count = std::min<uint64_t>(rule.number.value_or(1), bytes.size());
    for (uint64_t i = 0; i < count; ++i) {
        const size_t at = kHeaderSize + rule.random() % (bytes.size() - kHeaderSize);
        bytes[at] = static_cast<char>(bytes[at] ^ static_cast<char>(1 + rule.random() % 255));
    }
}

bool IsSet(const Rule& rule, const Message& message) {
    return rule.action != Rule::Action::Set || message.json.isObject();
}

}  // namespace

void Rules::Add(const std::string& text) {
    Rule rule = ParseRule(text);
    mRules.emplace(++mLast, Entry{std::move(rule), 0});
}

bool Rules::Applies(Rule& rule, const Record& record, bool reply) {
    if (rule.onReply != reply || rule.left == 0 || !IsSet(rule, MessageIn(record, reply))) return false;
    if (rule.action == Rule::Action::Answer && !record.WantsReply()) return false;
    if (!rule.filter.Matches(record)) return false;
    if (std::uniform_real_distribution<double>(0, 1)(rule.random) >= rule.probability) return false;
    if (rule.left) --*rule.left;
    return true;
}

void Rules::Do(Rule& rule, const Record& record, bool reply, Verdict& verdict) {
    const Message& message = MessageIn(record, reply);
    switch (rule.action) {
        case Rule::Action::Delay:
            verdict.delay += rule.delay;
            break;
        case Rule::Action::Drop:
            verdict.forward.clear();
            break;
        case Rule::Action::Duplicate:
            verdict.forward += verdict.forward;
            break;
        case Rule::Action::Cut:
            verdict.forward.resize(
                std::min<size_t>(rule.number.value_or(verdict.forward.size() / 2), verdict.forward.size()));
            verdict.close = true;
            break;
        case Rule::Action::Corrupt:
            Corrupt(rule, verdict.forward);
            break;
        case Rule::Action::Set: {
            Json::Value json = message.json;
            json[rule.member] = rule.value;
            verdict.forward = Framed(message, message.type, json);
            break;
        }
        case Rule::Action::Answer:
            verdict.forward.clear();
            verdict.answer = Framed(message, kReply, rule.value);
            break;
        case Rule::Action::Hold:
            verdict.hold = true;
            break;
        case Rule::Action::Close:
            verdict.forward.clear();
            verdict.close = true;
            break;
        case Rule::Action::Slow:
            verdict.rate = *rule.number;
            break;
    }
}

Verdict Rules::Apply(const Record& record, bool reply, const std::string& bytes) {
    Verdict verdict;
    verdict.forward = bytes;
    Record changed;  // for rules after one that has set a member
    const Record* present = &record;
    for (auto& [number, entry] : mRules) {
        Rule& rule = entry.rule;
        if (!Applies(rule, *present, reply)) continue;
        Do(rule, *present, reply, verdict);
        ++entry.applied;
        verdict.applied += (verdict.applied.empty() ? "" : ", ") + std::string(reply ? "reply: " : "") + rule.what;
        if (verdict.forward.empty()) break;
        if (rule.action != Rule::Action::Set) continue;
        if (present != &changed) changed = record;
        present = &changed;
        (reply ? *changed.reply : changed.message).json[rule.member] = rule.value;
    }
    return verdict;
}

std::string Rules::List() const {
    std::ostringstream text;
    for (const auto& [number, entry] : mRules) {
        text << number << "  " << Printable(entry.rule.text) << "  (applied " << Counted(entry.applied, "time")
             << ")\n";
    }
    return mRules.empty() ? "no rules\n" : text.str();
}

std::string Rules::Go() {
    std::vector<std::function<void()>> held;
    held.swap(mHeld);
    for (const auto& function : held) function();
    return Counted(held.size(), "message") + " let go\n";
}

std::string Rules::Remove(const std::string& number) {
    if (number == "all") {
        mRules.clear();
    } else {
        const auto found = std::find_if(mRules.begin(), mRules.end(),
                                        [&number](const auto& entry) { return std::to_string(entry.first) == number; });
        if (found == mRules.end())
            throw Failure(kUsage, "no rule " + Quoted(number) + "; write remove NUMBER or remove all");
        mRules.erase(found);
    }
    Go();
    return List();
}

std::string Rules::Tell(const std::string& line) {
    std::istringstream words(line);
    std::string first, second, more;
    words >> first >> second >> more;
    if (first.empty() || first[0] == '#') return "";
    if (first == "rules" && second.empty()) return List();
    if (first == "go" && second.empty()) return Go();
    if (first == "remove" && more.empty()) return Remove(second);
    if (first == "help" && second.empty()) {
        return "[FILTER] ACTION [OPTION...] adds a rule. \"rules\" lists them, \"remove NUMBER\" and \"remove all\"\n"
               "remove them, \"go\" lets held messages go.\nActions:\n" +
               RuleActions() + "Options:\n" + RuleOptions();
    }
    Add(line);
    return List();
}

}  // namespace hbbtv::traffic
