// The sending end of an IPC endpoint, independent of the transport.
#pragma once

#include <vector>

namespace tolm {

class TolmIpcClient {
  public:
    virtual ~TolmIpcClient() = default;

    // Sends a one-way message. Returns whether it was written; a client without a transport returns true.
    virtual bool Send(const std::vector<unsigned char>& /*msg*/) { return true; }

    // Sends a request and appends its reply to `reply`. Returns whether a complete reply was received. Requests of one
    // client must be made one at a time; one-way messages may be sent concurrently.
    virtual bool SendSync(const std::vector<unsigned char>& /*msg*/, std::vector<unsigned char>& /*reply*/) {
        return true;
    }
};

}  // namespace tolm
