// A recording as it is replayed: its exchanges in the order in which they began, and the instants at which something
// came or went.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "traffic/compare/facts.h"
#include "traffic/record/packed_records.h"
#include "traffic/record/record.h"
#include "traffic/record/recording.h"

namespace hbbtv::traffic {

struct Exchange : Record {
    uint64_t begin = 0;           // in microseconds, when the message came
    std::optional<uint64_t> end;  // when the reply came, or when the connection was closed without one
    bool lost = false;            // closed without a reply

    // Returns "record 17, channel.GetName".
    std::string Name() const;
};

// What is needed of every exchange. The strings belong to the exchanges.
struct ExchangeBrief {
    uint64_t begin = 0;
    std::optional<uint64_t> end;
    uint64_t connection = 0;
    const std::string* socket = nullptr;
    const std::string* family = nullptr;
    const std::string* operation = nullptr;
    bool event = false;
    bool asks = false;  // its message is a request
    bool lost = false;
};

// The exchanges of a recording, in little memory. Not thread-safe.
class Exchanges {
  public:
    void Add(const Exchange& exchange);

    // Orders them by their beginning.
    void Sort();

    // Marks the exchange as lost at this time.
    void Lose(size_t place, uint64_t time);

    size_t size() const { return mBriefs.size(); }
    const ExchangeBrief& Brief(size_t place) const { return mBriefs[place]; }
    Exchange operator[](size_t place) const;

  private:
    const std::string* Kept(const std::string& text) { return &*mStrings.insert(text).first; }

    PackedRecords mRecords;
    std::vector<size_t> mPlaces;  // of each exchange in mRecords
    std::vector<ExchangeBrief> mBriefs;
    std::set<std::string> mStrings;
};

struct Instant {
    uint64_t time = 0;  // in microseconds
    size_t exchange = 0;
    Side side = Side::Message;
};

struct Conversation {
    Exchanges exchanges;
    std::vector<Instant> instants;
    std::vector<size_t> begins;               // of each exchange: its place in `instants`
    std::vector<std::optional<size_t>> ends;  // of each exchange: that of its reply
    uint64_t damaged = 0;                     // records that cannot be replayed, as they are not messages
};

// Reads the recording to its end.
Conversation ReadConversation(RecordingReader& reader);

}  // namespace hbbtv::traffic
