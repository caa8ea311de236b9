// The sending end of an IPC endpoint, whatever transport is below it.
#pragma once

#include <vector>

namespace tolm {

class TolmIpcClient {
  public:
    virtual ~TolmIpcClient() = default;

    // Sends a one-way message: whether it was written. A client without a transport reports success.
    virtual bool Send(const std::vector<unsigned char>& /*msg*/) { return true; }

    // Sends a request and waits for its reply, which is appended to `reply`: whether a whole reply came. Requests of
    // one client have to be made one at a time; one-way messages may be sent beside them.
    virtual bool SendSync(const std::vector<unsigned char>& /*msg*/, std::vector<unsigned char>& /*reply*/) {
        return true;
    }
};

}  // namespace tolm
