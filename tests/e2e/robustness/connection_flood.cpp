// A peer that connects to sockets as often as it can, for the tests of the limits:
//
//     connection_flood COUNT SOCKET...
//
// Connects COUNT times in all, until no connection has succeeded for some time. Then it prints "done" and holds the
// connections until it is killed.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {

bool Connect(const char* path) {
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0) return true;
    close(fd);
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    using Clock = std::chrono::steady_clock;
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    int left = atoi(argv[1]);
    Clock::time_point last = Clock::now();
    for (int socket = 2; left > 0 && Clock::now() < last + std::chrono::seconds(2); ++socket) {
        if (socket == argc) socket = 2;
        if (Connect(argv[socket])) {
            --left;
            last = Clock::now();
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    printf("done\n");
    fflush(stdout);
    for (;;) pause();
}
