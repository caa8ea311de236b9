// A recording as it is replayed: its exchanges in the order in which they began, and the instants at which something
// came or went.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "traffic/compare/facts.h"
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

struct Instant {
    uint64_t time = 0;  // in microseconds
    size_t exchange = 0;
    Side side = Side::Message;
};

struct Conversation {
    std::vector<Exchange> exchanges;
    std::vector<Instant> instants;
    std::vector<size_t> begins;               // of each exchange: its place in `instants`
    std::vector<std::optional<size_t>> ends;  // of each exchange: that of its reply
    uint64_t damaged = 0;                     // records that cannot be replayed, as they are not messages
};

// Reads the recording to its end.
Conversation ReadConversation(RecordingReader& reader);

}  // namespace hbbtv::traffic
