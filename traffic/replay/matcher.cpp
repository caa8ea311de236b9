#include "traffic/replay/matcher.h"

#include "common/text/json.h"
#include "common/text/pointer_text.h"
#include "traffic/compare/difference.h"

namespace hbbtv::traffic {

namespace {

Record RecordOf(const std::string& socket, const Message& live) {
    Record record;
    record.message = live;
    Identify(record, socket);
    return record;
}

// Returns a string that equal messages have in common, with each handle written by `name`.
std::string KeyOf(const std::string& socket, const Message& message, const MessageFacts& facts,
                  const std::function<std::string(const std::string& kind, uint32_t handle)>& name) {
    if (!message.Readable()) return socket + "\n" + message.raw;
    Json::Value named = message.json;
    ForEachHandle(facts, message.json, [&](const std::string& key, const std::string& kind, uint32_t handle) {
        named[key] = name(kind, handle);
    });
    return socket + " " + WriteJson(named);
}

std::string ExactKey(const std::string& socket, const Message& message, const MessageFacts& facts) {
    return KeyOf(socket, message, facts, [](const std::string&, uint32_t handle) { return HexText(handle); });
}

std::string SimilarKey(const std::string& socket, const Message& message, const MessageFacts& facts) {
    return KeyOf(socket, message, facts, [](const std::string&, uint32_t) { return "*"; });
}

const MessageFacts& FactsOfMessage(const Exchange& exchange) {
    return FactsOf(exchange.family, exchange.operation, exchange.event, Side::Message);
}

}  // namespace

Matcher::Matcher(const Conversation& conversation, bool events, const Handles& handles, Settings settings)
    : mConversation(conversation), mHandles(handles), mSettings(settings), mTaken(conversation.exchanges.size()) {
    for (size_t i = 0; i < conversation.exchanges.size(); ++i) {
        if (conversation.exchanges.Brief(i).event != events) continue;
        const Exchange exchange = conversation.exchanges[i];
        const MessageFacts& facts = FactsOfMessage(exchange);
        mServed.push_back(i);
        mExact[ExactKey(exchange.socket, exchange.message, facts)].all.push_back(i);
        mSimilar[SimilarKey(exchange.socket, exchange.message, facts)].all.push_back(i);
    }
}

std::optional<size_t> Matcher::Take(const std::string& socket, const Message& message) {
    const Record live = RecordOf(socket, message);
    if (mSettings.strict) return TakeNext(live);
    const MessageFacts& facts = FactsOf(live.family, live.operation, live.event, Side::Message);
    std::optional<size_t> found = TakeExact(live, facts);
    const auto same = [this](const auto& kind, auto recorded, auto other) {
        return mHandles.Same(kind, recorded, other);
    };
    if (!found) found = TakeSimilar(live, facts, same);
    const auto fit = [this](const auto& kind, auto recorded, auto other) {
        return mHandles.Fit(kind, recorded, other);
    };
    if (!found) found = TakeSimilar(live, facts, fit);
    if (!found && mSettings.repeats) found = Repeated(live, facts);
    return found;
}

std::optional<size_t> Matcher::TakeNext(const Record& live) {
    while (mNext < mServed.size() && mTaken[mServed[mNext]]) ++mNext;
    if (mNext == mServed.size()) return std::nullopt;
    const Exchange next = mConversation.exchanges[mServed[mNext]];
    if (next.socket != live.socket) return std::nullopt;
    if (!Differences(FactsOfMessage(next), next.message, live.message, mHandles).empty()) return std::nullopt;
    return Mark(mServed[mNext]);
}

bool Matcher::Shorten(List& list) const {
    while (list.first < list.all.size() && mTaken[list.all[list.first]]) ++list.first;
    return list.first < list.all.size();
}

std::optional<size_t> Matcher::TakeExact(const Record& live, const MessageFacts& facts) {
    const std::string key = KeyOf(live.socket, live.message, facts, [this](const std::string& kind, uint32_t handle) {
        const std::set<uint32_t> recorded = mHandles.Recorded(kind, handle);
        return HexText(recorded.size() == 1 ? *recorded.begin() : handle);
    });
    const auto list = mExact.find(key);
    if (list == mExact.end()) return std::nullopt;
    List& left = list->second;
    if (!Shorten(left)) return std::nullopt;
    return Mark(left.all[left.first]);
}

std::optional<size_t> Matcher::TakeSimilar(const Record& live, const MessageFacts& facts, const Test& test) {
    const auto list = mSimilar.find(SimilarKey(live.socket, live.message, facts));
    if (list == mSimilar.end()) return std::nullopt;
    List& left = list->second;
    Shorten(left);
    for (size_t i = left.first; i < left.all.size(); ++i) {
        const size_t exchange = left.all[i];
        if (!mTaken[exchange] && HandlesMatch(exchange, live, facts, test)) return Mark(exchange);
    }
    return std::nullopt;
}

std::optional<size_t> Matcher::Repeated(const Record& live, const MessageFacts& facts) const {
    const auto list = mUsed.find(SimilarKey(live.socket, live.message, facts));
    if (list == mUsed.end()) return std::nullopt;
    const auto same = [this](const auto& kind, auto recorded, auto other) {
        return mHandles.Same(kind, recorded, other);
    };
    for (auto exchange = list->second.all.rbegin(); exchange != list->second.all.rend(); ++exchange) {
        if (HandlesMatch(*exchange, live, facts, same)) return *exchange;
    }
    return std::nullopt;
}

bool Matcher::HandlesMatch(size_t exchange, const Record& live, const MessageFacts& facts, const Test& test) const {
    bool match = true;
    const Json::Value recorded = mConversation.exchanges[exchange].message.json;
    ForEachHandle(facts, live.message.json, [&](const std::string& key, const std::string& kind, uint32_t handle) {
        const std::optional<uint32_t> other = ReadHandle(recorded[key]);
        match = match && other && test(kind, *other, handle);
    });
    return match;
}

size_t Matcher::Mark(size_t exchange) {
    mTaken[exchange] = true;
    if (mSettings.repeats) {
        const Exchange taken = mConversation.exchanges[exchange];
        mUsed[SimilarKey(taken.socket, taken.message, FactsOfMessage(taken))].all.push_back(exchange);
    }
    return exchange;
}

std::string Matcher::Nearest(const std::string& socket, const Message& message) const {
    const Record live = RecordOf(socket, message);
    if (mSettings.strict) {
        for (const size_t exchange : mServed) {
            if (!mTaken[exchange]) return "expected is " + mConversation.exchanges[exchange].Name();
        }
        return "all records have been replayed";
    }
    std::optional<Exchange> nearest;
    std::vector<Difference> fewest;
    bool used = false;
    for (const size_t i : mServed) {
        const ExchangeBrief& brief = mConversation.exchanges.Brief(i);
        if (*brief.socket != socket || *brief.operation != live.operation) continue;
        const Exchange exchange = mConversation.exchanges[i];
        std::vector<Difference> differences =
            Differences(FactsOfMessage(exchange), exchange.message, live.message, mHandles);
        const bool better = !nearest || differences.size() < fewest.size() ||
                            (differences.size() == fewest.size() && used && !mTaken[i]);
        if (!better) continue;
        nearest = exchange;
        fewest = std::move(differences);
        used = mTaken[i];
    }
    if (!nearest) return "the recording has no such message";
    if (fewest.empty()) return "all records of this message have been replayed; the nearest is " + nearest->Name();
    std::string text = "the nearest is " + nearest->Name();
    for (size_t i = 0; i < fewest.size(); ++i) text += (i == 0 ? ": " : "; ") + fewest[i].text;
    return text;
}

std::vector<size_t> Matcher::Left() const {
    std::vector<size_t> left;
    for (const size_t exchange : mServed) {
        if (!mTaken[exchange]) left.push_back(exchange);
    }
    return left;
}

}  // namespace hbbtv::traffic
