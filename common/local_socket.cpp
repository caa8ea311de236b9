#include "common/local_socket.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace hbbtv {

namespace {

constexpr int kBacklog = 100;

using Call = int (*)(int, const sockaddr*, socklen_t);

// Returns a new socket after a successful `call` (connect or bind), or -1 and errno.
int NewSocket(const std::string& path, Call call) {
    sockaddr_un address{};
    if (path.size() > kLongestSocketPath) {
        errno = ENAMETOOLONG;
        return -1;
    }
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size());
    Descriptor fd(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (fd.Get() < 0) return -1;
    if (call(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) return -1;
    return fd.Release();
}

}  // namespace

Descriptor::~Descriptor() {
    const int keep = errno;
    if (mFd >= 0) close(mFd);
    errno = keep;
}

int Descriptor::Release() {
    const int fd = mFd;
    mFd = -1;
    return fd;
}

int ConnectTo(const std::string& path) {
    return NewSocket(path, connect);
}

int ListenOn(const std::string& path) {
    Descriptor fd(NewSocket(path, bind));
    if (fd.Get() < 0 || chmod(path.c_str(), 0777) != 0 || listen(fd.Get(), kBacklog) != 0) return -1;
    return fd.Release();
}

}  // namespace hbbtv
