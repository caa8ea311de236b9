// The receiving end of an IPC endpoint, independent of the transport, and the delegate that receives its messages.
#pragma once

#include <vector>

namespace tolm {

// Called on the server's threads, concurrently for several connections.
class TolmIpcServerDelegate {
  public:
    virtual ~TolmIpcServerDelegate() = default;

    // Handles a one-way message. `port` is the sender's, from the message's header.
    virtual void OnRecv(const std::vector<unsigned char>& /*msg*/, int /*port*/) {}

    // Handles a request; `reply` is sent back. The sender takes an empty reply for a closed connection.
    virtual void OnRecvSync(const std::vector<unsigned char>& /*msg*/, std::vector<unsigned char>& /*reply*/,
                            int /*port*/) {}
};

class TolmIpcServer {
  public:
    // Waits until all threads of the server have ended.
    virtual ~TolmIpcServer() = default;

    virtual void Start() {}
};

}  // namespace tolm
