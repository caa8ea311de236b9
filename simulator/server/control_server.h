// The control socket: one line in, one line out. A person or a test acts as the viewer, or disturbs the signal, while
// the simulator runs. The program itself is the client (--tell).
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "server/local_listener.h"

namespace hbbtv::sim {

class EventLoop;

class ControlServer {
  public:
    // `answer` returns the answer to a line. Throws Fatal.
    ControlServer(EventLoop& loop, const std::string& path, std::function<std::string(const std::string&)> answer);

    const std::string& Path() const { return mListener.Path(); }

  private:
    LocalListener mListener;
};

// Sends the line to a running simulator and returns its answer. Throws Fatal if none answers within five seconds.
std::string Tell(const std::string& path, const std::string& line);

}  // namespace hbbtv::sim
