// Unix-domain stream sockets, and an owner of a file descriptor.
#pragma once

#include <string>

namespace hbbtv {

class Descriptor {
  public:
    explicit Descriptor(int fd) : mFd(fd) {}
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Get() const { return mFd; }
    int Release();

  private:
    int mFd;
};

// The longest path that fits into a socket address.
constexpr size_t kLongestSocketPath = 107;

// Returns a new non-blocking socket connected to the path, or -1 and errno. EAGAIN: the listener's backlog is full.
int ConnectTo(const std::string& path);

// Returns a new non-blocking socket that listens on the path, with mode 0777, or -1 and errno.
int ListenOn(const std::string& path);

}  // namespace hbbtv
