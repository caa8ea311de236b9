// The receiving end of an IPC endpoint, whatever transport is below it, and who is told of what it receives.
#pragma once

#include <vector>

namespace tolm {

// Called on the server's threads, from several connections at once.
class TolmIpcServerDelegate {
  public:
    virtual ~TolmIpcServerDelegate() = default;

    // A one-way message. `port` is the sender's, from the message's header.
    virtual void OnRecv(const std::vector<unsigned char>& /*msg*/, int /*port*/) {}

    // A request; what is left in `reply` goes back to the sender. An empty reply looks to it like a closed connection.
    virtual void OnRecvSync(const std::vector<unsigned char>& /*msg*/, std::vector<unsigned char>& /*reply*/,
                            int /*port*/) {}
};

class TolmIpcServer {
  public:
    // Returns when no thread of the server runs any more.
    virtual ~TolmIpcServer() = default;

    virtual void Start() {}
};

}  // namespace tolm
