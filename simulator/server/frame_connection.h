// One connection to a served family socket: reads messages, passes each to the handler, writes the replies. It exists
// until the peer disconnects or sends an invalid header; it does not read while replies wait to be written.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "common/frame.h"

namespace hbbtv::sim {

class EventLoop;

using FrameHandler = std::function<std::optional<Frame>(const Frame&)>;

// Takes ownership of the descriptor. `name` is for log lines. The handler must outlive the loop's run.
void ServeFrames(EventLoop& loop, int fd, const std::string& name, FrameHandler handler);

}  // namespace hbbtv::sim
