// The control socket: one line of text in, one line out. It is how a person or a test plays the viewer and the weather
// while the simulator runs, and the program itself is the client (--tell).
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "server/local_listener.h"

namespace hbbtv::sim {

class EventLoop;

class ControlServer {
  public:
    // `answer` turns a line into its answer. Throws Fatal.
    ControlServer(EventLoop& loop, const std::string& path, std::function<std::string(const std::string&)> answer);

    const std::string& Path() const { return mListener.Path(); }

  private:
    LocalListener mListener;
};

// Sends the line to a running simulator and returns its answer. Throws Fatal when there is none.
std::string Tell(const std::string& path, const std::string& line);

}  // namespace hbbtv::sim
