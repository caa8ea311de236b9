#include "traffic/replay/conversation.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include "traffic/view/members.h"

namespace hbbtv::traffic {

namespace {

// Recordings that were imported from a log may lack one of the clocks.
uint64_t TimeOf(const Record& record) {
    return record.time.Monotonic() != 0 ? record.time.Monotonic() : record.time.Wall();
}

Exchange ExchangeOf(Record record) {
    Exchange exchange{std::move(record), 0, {}, false};
    // What is not replayed.
    exchange.library = exchange.platform = {};
    exchange.rule.clear();
    exchange.note.clear();
    // By this program's protocol/, whatever that of the recorder was.
    exchange.family.clear();
    exchange.operation.clear();
    exchange.code.reset();
    Identify(exchange, std::string(exchange.socket));
    exchange.begin = TimeOf(exchange);
    const uint64_t duration = exchange.duration.value_or(0);
    if (exchange.reply) exchange.end = exchange.begin + std::min(duration, UINT64_MAX - exchange.begin);
    return exchange;
}

void AddInstants(Conversation& conversation) {
    std::vector<Instant>& instants = conversation.instants;
    for (size_t i = 0; i < conversation.exchanges.size(); ++i) {
        const ExchangeBrief& exchange = conversation.exchanges.Brief(i);
        instants.push_back({exchange.begin, i, Side::Message});
        if (exchange.end) instants.push_back({*exchange.end, i, Side::Reply});
    }
    std::stable_sort(instants.begin(), instants.end(),
                     [](const Instant& a, const Instant& b) { return a.time < b.time; });
    conversation.begins.resize(conversation.exchanges.size());
    conversation.ends.resize(conversation.exchanges.size());
    for (size_t i = 0; i < instants.size(); ++i) {
        if (instants[i].side == Side::Message) conversation.begins[instants[i].exchange] = i;
        if (instants[i].side == Side::Reply) conversation.ends[instants[i].exchange] = i;
    }
}

}  // namespace

std::string Exchange::Name() const {
    return "record " + std::to_string(number) + ", " + FullName(*this);
}

void Exchanges::Add(const Exchange& exchange) {
    mPlaces.push_back(mRecords.size());
    mRecords.Add(exchange);
    ExchangeBrief brief;
    brief.begin = exchange.begin;
    brief.end = exchange.end;
    brief.connection = exchange.connection;
    brief.socket = Kept(exchange.socket);
    brief.family = Kept(exchange.family);
    brief.operation = Kept(exchange.operation);
    brief.event = exchange.event;
    brief.asks = exchange.message.type == kRequest;
    brief.lost = exchange.lost;
    mBriefs.push_back(brief);
}

void Exchanges::Sort() {
    std::vector<size_t> order(mBriefs.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [this](size_t a, size_t b) { return mBriefs[a].begin < mBriefs[b].begin; });
    std::vector<ExchangeBrief> briefs;
    std::vector<size_t> places;
    briefs.reserve(order.size());
    places.reserve(order.size());
    for (const size_t place : order) {
        briefs.push_back(mBriefs[place]);
        places.push_back(mPlaces[place]);
    }
    mBriefs.swap(briefs);
    mPlaces.swap(places);
}

void Exchanges::Lose(size_t place, uint64_t time) {
    mBriefs[place].lost = true;
    mBriefs[place].end = std::max(mBriefs[place].begin, time);
}

Exchange Exchanges::operator[](size_t place) const {
    const ExchangeBrief& brief = mBriefs[place];
    return {mRecords.At(mPlaces[place]), brief.begin, brief.end, brief.lost};
}

Conversation ReadConversation(RecordingReader& reader) {
    Conversation conversation;
    std::map<uint64_t, uint64_t> closed;  // by connection
    while (std::optional<Record> record = reader.Next()) {
        if (record->kind == Record::Kind::Damaged) ++conversation.damaged;
        if (record->kind == Record::Kind::Closed) closed[record->connection] = TimeOf(*record);
        if (record->kind == Record::Kind::Exchange) conversation.exchanges.Add(ExchangeOf(std::move(*record)));
    }
    for (size_t i = 0; i < conversation.exchanges.size(); ++i) {
        const ExchangeBrief& exchange = conversation.exchanges.Brief(i);
        const auto end = closed.find(exchange.connection);
        if (!exchange.end && exchange.asks && end != closed.end()) conversation.exchanges.Lose(i, end->second);
    }
    conversation.exchanges.Sort();
    AddInstants(conversation);
    return conversation;
}

}  // namespace hbbtv::traffic
