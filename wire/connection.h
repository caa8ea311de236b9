// A connection to one socket of the wire. Every wait has a time limit.
#pragma once

#include <chrono>
#include <string>

#include "common/duration.h"
#include "common/frame.h"
#include "common/local_socket.h"

namespace hbbtv {

class WireConnection {
  public:
    // Connects. Throws Failure(kUnavailable), or Failure(kTimeout) if the other side does not accept the connection.
    explicit WireConnection(const std::string& path);

    // Throws Failure(kPeerLost) or Failure(kTimeout).
    void Send(const std::string& bytes, Milliseconds limit);

    // Returns the next message. Throws Failure(kPeerLost), Failure(kTimeout), or Failure(kInvalidReply) if the header
    // announces too many bytes.
    Frame Receive(Milliseconds limit);

    // Returns all bytes until none arrive for `quiet`, or the other side closes the connection.
    std::string ReceiveAll(Milliseconds quiet);

  private:
    // Waits until the socket is ready for the poll() `events`. Returns false at the deadline.
    bool Wait(short events, std::chrono::steady_clock::time_point deadline) const;

    std::string mPath;
    Descriptor mSocket;
    FrameReader mReader;
};

}  // namespace hbbtv
