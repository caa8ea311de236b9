// A connection to one socket of the wire, with an end to every wait.
#pragma once

#include <chrono>
#include <string>

#include "common/duration.h"
#include "common/frame.h"
#include "common/local_socket.h"

namespace hbbtv {

class WireConnection {
  public:
    // Throws Failure(kNobodyThere) that says what is wrong with the path.
    explicit WireConnection(const std::string& path);

    // Throws Failure(kPeerLost) or Failure(kTimeout).
    void Send(const std::string& bytes, Milliseconds limit);

    // The next message. Throws Failure(kPeerLost), Failure(kTimeout) or, for a message that cannot be, kNotUnderstood.
    Frame Receive(Milliseconds limit);

    // Whatever comes until nothing more does for `quiet`, or the other side closes.
    std::string ReceiveAll(Milliseconds quiet);

  private:
    // Waits until the socket is ready for `events` of poll(); false when it is not in time.
    bool Wait(short events, std::chrono::steady_clock::time_point deadline) const;

    std::string mPath;
    Descriptor mSocket;
    FrameReader mReader;
};

}  // namespace hbbtv
