// Finds the exchange of the recording that a message is.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "traffic/compare/handles.h"
#include "traffic/replay/conversation.h"

namespace hbbtv::traffic {

// Messages match by socket, operation and members; handles match if they are known to be the same, or if both are seen
// for the first time. Equal messages are taken in the order of the recording; there is no order between others.
class Matcher {
  public:
    struct Settings {
        bool strict = false;   // only the next exchange of the recording matches
        bool repeats = false;  // a message whose exchanges have all been taken matches the last one of them again
    };

    // Takes messages for the exchanges in which the other side sends: `events` or requests. Both must outlive it.
    Matcher(const Conversation& conversation, bool events, const Handles& handles, Settings settings);

    // Returns the exchange that the message is. `live` need no type.
    std::optional<size_t> Take(const std::string& socket, const Message& live);

    // Returns a sentence about the exchange that is the nearest to a message that did not match.
    std::string Nearest(const std::string& socket, const Message& live) const;

    // Returns the exchanges that were not taken.
    std::vector<size_t> Left() const;

  private:
    using Test = std::function<bool(const std::string& kind, uint32_t recorded, uint32_t live)>;

    // A queue of exchanges that takes little memory: most messages of a long recording have one of their own.
    struct List {
        std::vector<size_t> all;
        size_t first = 0;  // of those that are left
    };
    using Lists = std::unordered_map<std::string, List>;

    // Removes the exchanges at the front that were taken. Returns whether any are left.
    bool Shorten(List& list) const;

    std::optional<size_t> TakeNext(const Record& live);
    std::optional<size_t> TakeExact(const Record& live, const MessageFacts& facts);
    std::optional<size_t> TakeSimilar(const Record& live, const MessageFacts& facts, const Test& test);
    std::optional<size_t> Repeated(const Record& live, const MessageFacts& facts) const;
    bool HandlesMatch(size_t exchange, const Record& live, const MessageFacts& facts, const Test& test) const;
    size_t Mark(size_t exchange);

    const Conversation& mConversation;
    const Handles& mHandles;
    const Settings mSettings;
    std::vector<size_t> mServed;  // the exchanges that can match
    std::vector<bool> mTaken;     // of all exchanges
    size_t mNext = 0;             // in mServed: all before it were taken
    Lists mExact;                 // not taken yet, by socket and message; may have some that were taken
    Lists mSimilar;               // the same, by socket and message without its handles
    Lists mUsed;                  // taken, by socket and message without its handles
};

}  // namespace hbbtv::traffic
