#include "ipc/socket/tolm_ipc_connection_limits.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "ipc/tolm_log.h"

namespace tolm {

namespace {

// The families' connections to the platform, and those of clients, files and the rest of the process.
constexpr rlim_t kReserve = 18 + 64;
// Each accept thread has looked at the descriptors before it waits, and may accept one connection after others have
// reached the limit.
constexpr rlim_t kAcceptThreads = 8;

pid_t PeerOf(int fd) {
    ucred peer{};
    socklen_t size = sizeof(peer);
    return getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 ? peer.pid : 0;
}

// Returns the number of descriptors below which peers' connections are accepted.
rlim_t DescriptorsForConnections() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return RLIM_INFINITY;
    return limit.rlim_cur - std::min(kReserve + kAcceptThreads, limit.rlim_cur / 2);
}

}  // namespace

bool HasDescriptorForConnection(int listenFd) {
    // The lowest free number: all below it are in use.
    const int next = fcntl(listenFd, F_DUPFD_CLOEXEC, 0);
    if (next < 0) return errno != EMFILE;
    close(next);
    return static_cast<rlim_t>(next) < DescriptorsForConnections();
}

bool OncePerSecond::Due() {
    const auto now = std::chrono::steady_clock::now();
    std::lock_guard<std::mutex> lock(mMutex);
    if (now < mNext) return false;
    mNext = now + std::chrono::seconds(1);
    return true;
}

PeerConnections& PeerConnections::Get() {
    // Never destroyed: connections may end during exit.
    static PeerConnections* const connections = new PeerConnections;
    return *connections;
}

bool PeerConnections::Add(int fd) {
    const pid_t peer = PeerOf(fd);
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (!HoldsTooManyLocked(peer)) {
            mPeers[fd] = peer;
            return true;
        }
    }
    if (mLine.Due()) {
        TOLM_SOCKET_LOG(ANDROID_LOG_WARN, "process %d holds %zu connections, closing a further one", peer,
                        kMaxConnectionsOfPeer);
    }
    return false;
}

void PeerConnections::Remove(int fd) {
    std::lock_guard<std::mutex> lock(mMutex);
    mPeers.erase(fd);
}

bool PeerConnections::HoldsTooManyLocked(pid_t peer) const {
    std::vector<pollfd> connections;
    for (const auto& [fd, process] : mPeers) {
        if (process == peer) connections.push_back({fd, 0, 0});
    }
    if (connections.size() < kMaxConnectionsOfPeer) return false;
    if (poll(connections.data(), connections.size(), 0) < 0) return true;
    const auto held = std::count_if(connections.begin(), connections.end(),
                                    [](const pollfd& connection) { return (connection.revents & POLLHUP) == 0; });
    return static_cast<size_t>(held) >= kMaxConnectionsOfPeer;
}

}  // namespace tolm
