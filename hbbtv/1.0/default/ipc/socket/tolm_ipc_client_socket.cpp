#include "ipc/socket/tolm_ipc_client_socket.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>

#include "ipc/socket/tolm_ipc_internal_socket.h"
#include "ipc/tolm_ipc_key_converter.h"
#include "ipc/tolm_log.h"
#include "ipc/tolm_reply_timeout.h"

namespace tolm {

struct TolmIpcClientSocket::Connection {
    explicit Connection(EndpointStatus& theStatus)
        : fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)), status(theStatus) {}
    ~Connection() {
        Lose();
        CloseSocket(fd);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Ends the connection for both ends. The descriptor stays open for the thread that reads from it.
    void Abandon() {
        Lose();
        shutdown(fd, SHUT_RDWR);
    }

    void Establish() {
        ucred peer{};
        socklen_t size = sizeof(peer);
        getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size);
        connected = true;
        status.Connected(peer.pid);
    }

    // The next message needs another connection.
    void Lose() {
        if (connected.exchange(false)) status.Disconnected();
    }

    const int fd;
    EndpointStatus& status;
    std::atomic<bool> connected{false};
};

namespace {

// Another thread may be writing to a platform that does not read.
std::unique_lock<DeadlineMutex> LockForMessage(DeadlineMutex& mutex, const Deadline& deadline) {
    if (mutex.Lock(deadline)) return std::unique_lock<DeadlineMutex>(mutex, std::adopt_lock);
    TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Send Error: %s", strerror(ETIMEDOUT));
    return {};
}

}  // namespace

TolmIpcClientSocket::TolmIpcClientSocket(TolmIpcKeyId key, int port)
    : mSocketName(TolmIpcKeyConverter::GetInstance()->GetSocketName(key)),
      mPort(port),
      mStatus(EndpointStatus::Of(key)),
      mTimeout(ReplyTimeout()) {
    Init();
}

TolmIpcClientSocket::~TolmIpcClientSocket() = default;

bool TolmIpcClientSocket::Init() {
    const std::string path = GetSocketFilePath(mSocketName, mPort);
    if (unlink(path.c_str()) != 0 && errno != ENOENT) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "client unlink error: %s", strerror(errno));
    }
    mConnection = std::make_shared<Connection>(mStatus);
    if (mConnection->fd < 0) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "client socket fd is negative error: %s", strerror(errno));
        return false;
    }
    const sockaddr_un address = SocketAddress(path);
    if (bind(mConnection->fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Bind error");
        return false;
    }
    if (chmod(path.c_str(), 0777) != 0) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "chmod is negative, Error: %s", strerror(errno));
    }
    return true;
}

bool TolmIpcClientSocket::Connect(const Deadline& deadline) {
    if (mConnection->connected) return true;
    const std::string path = GetSocketFilePath(mSocketName);
    const sockaddr_un address = SocketAddress(path);
    int failed;
    do {
        failed = deadline.Limit(mConnection->fd, SO_SNDTIMEO)
                     ? connect(mConnection->fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address))
                     : -1;
    } while (failed != 0 && errno == EAGAIN && deadline.AllowsAnotherTry());
    if (failed != 0) {
        const char* const why = strerror(errno);
        mStatus.SetError(std::string("cannot connect: ") + why);
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Connect error:%s server_path:%s", why, path.c_str());
        return false;
    }
    mConnection->Establish();
    return true;
}

bool TolmIpcClientSocket::ReconnectIfNeeded(const Deadline& deadline) {
    if (mConnection->connected) return true;
    TOLM_SOCKET_LOG(ANDROID_LOG_WARN, "Reconnect to server ...");
    mConnection.reset();
    Init();
    Connect(deadline);
    return mConnection->connected;
}

bool TolmIpcClientSocket::SendLocked(TolmIpcMessageType type, const std::vector<unsigned char>& msg,
                                     const Deadline& deadline) {
    if (!ReconnectIfNeeded(deadline)) return false;
    if (msg.empty()) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Msg is empty");
        return false;
    }
    bool alive = true;
    if (SendInternalSocket(mConnection->fd, mPort, type, msg, alive, deadline)) return true;
    mStatus.SetError("a message was not sent");
    mConnection->Abandon();  // a part of the message may have been written
    return false;
}

bool TolmIpcClientSocket::Send(const std::vector<unsigned char>& msg) {
    const Deadline deadline(mTimeout);
    const std::unique_lock<DeadlineMutex> lock = LockForMessage(mMutex, deadline);
    return lock && SendLocked(TOLM_IPC_MSG_ASYNC, msg, deadline);
}

bool TolmIpcClientSocket::SendSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply) {
    const Deadline deadline(mTimeout);
    std::shared_ptr<Connection> connection;
    {
        const std::unique_lock<DeadlineMutex> lock = LockForMessage(mMutex, deadline);
        if (!lock || !SendLocked(TOLM_IPC_MSG_SYNC, msg, deadline)) return false;
        connection = mConnection;
    }
    // The next message is the reply, whatever its type and port.
    TolmIpcSocketMsgHeader header{};
    bool alive = true;
    if (RecvInternalSocket(connection->fd, header, reply, alive, deadline)) return true;
    mStatus.SetError(alive ? "a reply did not come, or not in time"
                           : "no reply: the platform has closed the connection");
    connection->Abandon();  // the reply, or the rest of it, may still come
    return false;
}

}  // namespace tolm
