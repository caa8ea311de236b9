#include "ipc/socket/tolm_ipc_server_socket.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "ipc/socket/tolm_ipc_connection_limits.h"
#include "ipc/socket/tolm_ipc_internal_socket.h"
#include "ipc/tolm_ipc_key_converter.h"
#include "ipc/tolm_log.h"
#include "ipc/tolm_memory_claim.h"

namespace tolm {

namespace {

constexpr int kBacklog = 100;

// What a connection keeps of its largest message for the next.
constexpr size_t kMaxKeptBytes = 64u << 10;

void Empty(std::vector<unsigned char>& payload) {
    payload.clear();
    const size_t kept = payload.capacity();
    if (kept <= kMaxKeptBytes) return;
    std::vector<unsigned char>().swap(payload);  // without exceptions, shrink_to_fit() does nothing
    ReturnFreedMemory(kept);
}

}  // namespace

TolmIpcServerSocket::TolmIpcServerSocket(TolmIpcKeyId key, TolmIpcServerDelegate* delegate)
    : mDelegate(delegate), mStatus(EndpointStatus::Of(key)) {
    const std::string& name = TolmIpcKeyConverter::GetInstance()->GetSocketName(key);
    const std::string path = GetSocketFilePath(name);
    TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "socket_name:%s, socket_path:%s", name.c_str(), path.c_str());
    Listen(path);
}

void TolmIpcServerSocket::Listen(const std::string& path) {
    if (unlink(path.c_str()) != 0 && errno != ENOENT) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "server unlink file Error: %s", strerror(errno));
    }
    mListenFd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (mListenFd < 0) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "server socket fd is negative, Error: %s", strerror(errno));
        return;
    }
    const sockaddr_un address = SocketAddress(path);
    if (bind(mListenFd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Bind Error: %s", strerror(errno));
        return;
    }
    if (listen(mListenFd, kBacklog) != 0) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Listen Error: %s", strerror(errno));
        return;
    }
    if (chmod(path.c_str(), 0777) != 0) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "chmod is negative, Error: %s", strerror(errno));
    }
}

TolmIpcServerSocket::~TolmIpcServerSocket() {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mRunning = false;
        // The shutdown wakes threads that wait in accept or in a read. No descriptor is closed while a thread may still
        // use its number.
        shutdown(mListenFd, SHUT_RDWR);
        for (const Connection& connection : mConnections) shutdown(connection.fd, SHUT_RDWR);
    }
    mChanged.notify_all();
    mAcceptThread.Join();
    CloseSocket(mListenFd);
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait(lock, [this] { return mConnections.empty(); });
    mEnded.Join();
}

void TolmIpcServerSocket::Start() {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mRunning) return;
        mRunning = true;
    }
    if (!mAcceptThread.Start([this] { Run(); })) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "thread error");
    }
}

bool TolmIpcServerSocket::Running() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mRunning;
}

void TolmIpcServerSocket::Pause(std::chrono::milliseconds time) {
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait_for(lock, time, [this] { return !mRunning; });
}

// Peers wait in the backlog until other connections have ended.
void TolmIpcServerSocket::WaitForDescriptor() {
    constexpr std::chrono::milliseconds kPause{10};
    static OncePerSecond line;
    while (Running() && !HasDescriptorForConnection(mListenFd)) {
        if (line.Due()) TOLM_SOCKET_LOG(ANDROID_LOG_WARN, "too many descriptors in use, accepting pauses");
        Pause(kPause);
    }
}

// A platform that connects for every event may do so faster than the connections' threads end; threads would accumulate
// until no more can be started. So with many connections, the next one is started when one has ended, or after a pause.
void TolmIpcServerSocket::WaitForRoom() {
    constexpr size_t kMany = 64;
    constexpr std::chrono::milliseconds kPause{10};
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait_for(lock, kPause, [this] { return !mRunning || mConnections.size() < kMany; });
}

void TolmIpcServerSocket::Run() {
    int failures = 0;
    while (Running()) {
        WaitForDescriptor();
        sockaddr_un peer{};
        socklen_t length = sizeof(peer);
        const int fd = accept4(mListenFd, reinterpret_cast<sockaddr*>(&peer), &length, SOCK_CLOEXEC);
        if (fd >= 0) {
            failures = 0;
            StartConnection(fd, peer);
        } else if (Running()) {
            TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "accept Error: %s", strerror(errno));
            PauseAfterFailures(++failures);
        }
    }
}

// Accepting continues immediately after a failure. A permanent failure (no descriptors left, a socket that could not be
// bound) must not flood the log or keep a processor busy, so after many in a row there is a pause.
void TolmIpcServerSocket::PauseAfterFailures(int failures) {
    constexpr int kWithoutPause = 100;
    constexpr std::chrono::milliseconds kPause{100};
    if (failures >= kWithoutPause) Pause(kPause);
}

void TolmIpcServerSocket::StartConnection(int fd, const sockaddr_un& peer) {
    if (!PeerConnections::Get().Add(fd)) {
        mStatus.SetError("a connection was closed: its process holds too many");
        return CloseSocket(fd);
    }
    WaitForRoom();
    std::lock_guard<std::mutex> lock(mMutex);
    const auto connection = mConnections.insert(mConnections.end(), Connection{fd, {}});
    // The new thread cannot end before its handle is stored, because it needs the mutex to end.
    const bool started = mRunning && connection->thread.Start([this, connection, fd, peer] {
        mStatus.Connected(0);
        OnRecv(fd, peer);
        mStatus.Disconnected();
        EndConnection(connection);
    });
    if (started) return;
    if (mRunning) TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "thread error");
    PeerConnections::Get().Remove(fd);
    CloseSocket(fd);
    mConnections.erase(connection);
}

void TolmIpcServerSocket::OnRecv(int fd, sockaddr_un) {
    bool alive = true;
    std::vector<unsigned char> payload;
    while (Running()) {
        // A message with a header is delivered even if its payload is incomplete: the JSON layer reports the error.
        TolmIpcSocketMsgHeader header{};
        const bool complete = RecvInternalSocket(fd, header, payload, alive);
        if (!alive) break;
        if (header.type == TOLM_IPC_MSG_SYNC) {
            std::vector<unsigned char> reply;
            mDelegate->OnRecvSync(payload, reply, header.port);
            if (!SendInternalSocket(fd, header.port, TOLM_IPC_MSG_REPLY, reply, alive)) break;
        } else if (header.type == TOLM_IPC_MSG_ASYNC) {
            mDelegate->OnRecv(payload, header.port);
        } else {
            mStatus.Refused("a message of type " + std::to_string(header.type));
        }
        if (!complete) break;  // the next bytes are not the begin of a message
        Empty(payload);
    }
}

// The thread joins the one that ended before it and is itself joined by the next one, so that at most one is unjoined
// when all have ended. It counts as a connection until it no longer waits for anything.
void TolmIpcServerSocket::EndConnection(Connections::iterator connection) {
    PeerConnections::Get().Remove(connection->fd);
    std::unique_lock<std::mutex> lock(mMutex);
    CloseSocket(std::exchange(connection->fd, -1));
    while (mEnded.Joinable()) {
        TolmThread previous = std::move(mEnded);
        lock.unlock();
        previous.Join();
        lock.lock();
    }
    mEnded = std::move(connection->thread);
    mConnections.erase(connection);
    mChanged.notify_all();
}

}  // namespace tolm
