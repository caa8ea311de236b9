#include "socket_pair.h"

#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cstdio>
#include <cstdlib>

namespace hbbtv::test {

SocketPair::SocketPair(int type) : SocketPair(Open(type)) {}

SocketPair::SocketPair() : SocketPair(SOCK_STREAM) {}

SocketPair::Descriptors SocketPair::Open(int type) {
    int fds[2];
    if (socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, fds) != 0) {
        std::perror("socketpair");
        std::abort();
    }
    return {fds[0], fds[1]};
}

void WaitUntilRead(int reader) {
    int left = 1;
    while (ioctl(reader, FIONREAD, &left) == 0 && left > 0) sched_yield();
}

}  // namespace hbbtv::test
