// Limits on the connections that the servers of this process accept, taken together. A peer that opens connections
// without end must not take the descriptors that the families need to reach the platform.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>

namespace tolm {

// Returns whether a connection can be accepted on the listening socket and leaves enough descriptors for everything
// else in this process. Returns true for an invalid descriptor: accepting reports that.
bool HasDescriptorForConnection(int listenFd);

// The connections of one peer process that this process accepts.
constexpr size_t kMaxConnectionsOfPeer = 256;

// Returns true at most once per second, for log lines that a peer can cause at any rate. Thread-safe.
class OncePerSecond {
  public:
    bool Due();

  private:
    std::mutex mMutex;
    std::chrono::steady_clock::time_point mNext;  // guarded by mMutex
};

// The accepted connections of this process and the processes at their other ends. Thread-safe.
class PeerConnections {
  public:
    static PeerConnections& Get();

    // Adds a connection. Returns false, after logging it, if its peer process holds too many. Connections that the
    // peer has closed do not count: a platform may connect for every event, faster than the events are handled.
    bool Add(int fd);

    // Call it before the descriptor is closed.
    void Remove(int fd);

  private:
    bool HoldsTooManyLocked(pid_t peer) const;

    std::mutex mMutex;
    std::map<int, pid_t> mPeers;  // by descriptor; guarded by mMutex
    OncePerSecond mLine;
};

}  // namespace tolm
