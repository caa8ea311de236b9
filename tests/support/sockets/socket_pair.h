// Two sockets connected to each other, without a file.
#pragma once

#include "raw_socket.h"

namespace hbbtv::test {

struct SocketPair {
    // `type` as for socketpair(2): a stream, or SOCK_SEQPACKET to see each write separately.
    explicit SocketPair(int type);
    SocketPair();

    RawConnection near;
    RawConnection far;

  private:
    struct Descriptors {
        int near;
        int far;
    };
    static Descriptors Open(int type);
    explicit SocketPair(Descriptors fds) : near(fds.near), far(fds.far) {}
};

// Waits until the peer has read all that was written to the connection; `reader` is the peer's descriptor.
void WaitUntilRead(int reader);

}  // namespace hbbtv::test
