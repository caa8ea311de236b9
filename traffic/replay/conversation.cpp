#include "traffic/replay/conversation.h"

#include <algorithm>
#include <map>
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
        const Exchange& exchange = conversation.exchanges[i];
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

Conversation ReadConversation(RecordingReader& reader) {
    Conversation conversation;
    std::map<uint64_t, uint64_t> closed;  // by connection
    while (std::optional<Record> record = reader.Next()) {
        if (record->kind == Record::Kind::Damaged) ++conversation.damaged;
        if (record->kind == Record::Kind::Closed) closed[record->connection] = TimeOf(*record);
        if (record->kind == Record::Kind::Exchange) conversation.exchanges.push_back(ExchangeOf(std::move(*record)));
    }
    for (Exchange& exchange : conversation.exchanges) {
        const auto end = closed.find(exchange.connection);
        if (exchange.reply || exchange.message.type != kRequest || end == closed.end()) continue;
        exchange.lost = true;
        exchange.end = std::max(exchange.begin, end->second);
    }
    std::stable_sort(conversation.exchanges.begin(), conversation.exchanges.end(),
                     [](const Exchange& a, const Exchange& b) { return a.begin < b.begin; });
    AddInstants(conversation);
    return conversation;
}

}  // namespace hbbtv::traffic
