// The messages in the bytes of one direction of a connection, however the bytes are cut.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "traffic/record/record.h"
#include "traffic/understanding/frame_walk.h"

namespace hbbtv::traffic {

class MessageStream {
  public:
    // Called for each message that has become complete; of a payload, at most kLargestPayload bytes are kept.
    // `damaged`: it is a piece of the bytes after a header that is not one, all of them in `raw`.
    using Taker = std::function<void(Message&& message, bool damaged)>;

    void Take(const std::string& bytes, const Taker& take);

    // Returns what has come of a message that is not complete, with its header in `raw` if that is not complete either.
    std::optional<Message> Rest() const;

    // Forgets a part of a message: the next byte is the first of a message.
    void Restart();

  private:
    void TakeDamaged(const char* bytes, size_t count, size_t header, const Taker& take);
    Message Complete();

    FrameWalk mWalk;
    std::string mPayload;
    bool mDamaged = false;
};

}  // namespace hbbtv::traffic
