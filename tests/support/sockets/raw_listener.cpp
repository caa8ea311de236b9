#include "raw_listener.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace hbbtv::test {

RawListener::RawListener(const std::string& path) : mPath(path), mFd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, path.c_str(), std::min(path.size(), sizeof(address.sun_path) - 1));
    unlink(path.c_str());
    if (bind(mFd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 || listen(mFd, 100) != 0) {
        std::perror(path.c_str());
        std::abort();
    }
}

RawListener::~RawListener() {
    close(mFd);
    unlink(mPath.c_str());
}

RawConnection RawListener::Accept() {
    pollfd ready{mFd, POLLIN, 0};
    poll(&ready, 1, static_cast<int>(std::chrono::milliseconds(kPatience).count()));
    const int fd = accept4(mFd, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd < 0) {
        std::perror(("no connection to " + mPath).c_str());
        std::abort();
    }
    return RawConnection(fd);
}

}  // namespace hbbtv::test
