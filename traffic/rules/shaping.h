// The messages of one connection while there are rules: they are collected, and each gets its verdict before it is
// passed on.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "traffic/rules/rules.h"
#include "traffic/understanding/frame_walk.h"
#include "traffic/understanding/understanding.h"

namespace hbbtv::traffic {

class Shaping {
  public:
    Shaping(Rules& rules, const RelayedConnection& about) : mRules(rules), mAbout(about) {}

    // Returns whether bytes of this direction are collected. They begin with a message.
    bool Collects(Direction direction) const {
        return mRules.Any() || !Bytes(direction).empty() || (direction == Direction::kToCaller && mAnswers > 0);
    }

    // Call it for each message that was passed on without being collected.
    void PassedOn(Direction direction, const FrameHeader& header);

    void Collect(Direction direction, const char* bytes, size_t count);

    struct Step {
        std::string message;  // as it has arrived, with its header
        Verdict verdict;
    };

    // Replies to the request that was judged last: the message is the next one to the caller after the replies to the
    // requests before it.
    void Answer(const std::string& message);

    // Returns the next message that is complete.
    std::optional<Step> Next(Direction direction);

    // Returns bytes that are not to be collected: the beginning of a message that is too long for rules, or at the end
    // of the direction, what is left.
    std::string Rest(Direction direction, bool end);

    Rules& Of() { return mRules; }

  private:
    const std::string& Bytes(Direction direction) const { return mBytes[static_cast<size_t>(direction)]; }
    std::string& Bytes(Direction direction) { return mBytes[static_cast<size_t>(direction)]; }
    Verdict Judge(Direction direction, const std::string& message);
    std::optional<Step> NextAnswer();

    // A request without reply so far.
    struct Asked {
        std::unique_ptr<Record> request;  // null if it was not judged
        std::string answer;               // of a rule; empty: the other side replies
    };

    Rules& mRules;
    const RelayedConnection mAbout;
    std::string mBytes[2];
    std::deque<Asked> mAsked;
    size_t mAnswers = 0;  // in mAsked
};

}  // namespace hbbtv::traffic
