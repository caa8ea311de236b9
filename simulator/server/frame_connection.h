// One connection to a served family socket: reads messages, hands each to the handler, writes the replies. It lives
// until the peer leaves or sends what cannot be a message; no more is read while replies wait to be written.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "common/frame.h"

namespace hbbtv::sim {

class EventLoop;

using FrameHandler = std::function<std::optional<Frame>(const Frame&)>;

// Takes the descriptor. `name` is for log lines. The handler must stay valid for as long as the loop runs.
void ServeFrames(EventLoop& loop, int fd, const std::string& name, FrameHandler handler);

}  // namespace hbbtv::sim
