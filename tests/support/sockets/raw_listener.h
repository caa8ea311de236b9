// A listening socket file whose connections a test serves by hand, byte by byte.
#pragma once

#include <string>

#include "raw_socket.h"

namespace hbbtv::test {

class RawListener {
  public:
    // Listens on `path`, replacing what is there.
    explicit RawListener(const std::string& path);
    ~RawListener();
    RawListener(const RawListener&) = delete;
    RawListener& operator=(const RawListener&) = delete;

    // Returns the next connection; the process exits with a message when none comes within kPatience.
    RawConnection Accept();

  private:
    const std::string mPath;
    const int mFd;
};

}  // namespace hbbtv::test
