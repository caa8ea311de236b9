// The system calls behind both ends of a Unix-domain stream socket, and a descriptor that closes itself.
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

// Longest path that fits into a socket's address.
constexpr size_t kLongestSocketPath = 107;

// A new non-blocking socket connected to the path, or -1 and errno. EAGAIN: somebody listens, but too many wait there.
int ConnectTo(const std::string& path);

// A new non-blocking socket bound to the path and listening there with mode 0777, or -1 and errno.
int ListenOn(const std::string& path);

}  // namespace hbbtv
