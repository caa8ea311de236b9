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

namespace tolm {

struct TolmIpcClientSocket::Connection {
    Connection() : fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    ~Connection() { CloseSocket(fd); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    const int fd;
    std::atomic<bool> connected{false};
};

TolmIpcClientSocket::TolmIpcClientSocket(TolmIpcKeyId key, int port)
    : mSocketName(TolmIpcKeyConverter::GetInstance()->GetSocketName(key)), mPort(port) {
    Init();
}

TolmIpcClientSocket::~TolmIpcClientSocket() = default;

bool TolmIpcClientSocket::Init() {
    const std::string path = GetSocketFilePath(mSocketName, mPort);
    if (unlink(path.c_str()) != 0 && errno != ENOENT) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "client unlink error: %s", strerror(errno));
    }
    mConnection = std::make_shared<Connection>();
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

bool TolmIpcClientSocket::Connect() {
    if (mConnection->connected) return true;
    const std::string path = GetSocketFilePath(mSocketName);
    const sockaddr_un address = SocketAddress(path);
    if (connect(mConnection->fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Connect error:%s server_path:%s", strerror(errno), path.c_str());
        return false;
    }
    mConnection->connected = true;
    return true;
}

bool TolmIpcClientSocket::ReconnectIfNeeded() {
    if (mConnection->connected) return true;
    TOLM_SOCKET_LOG(ANDROID_LOG_WARN, "Reconnect to server ...");
    mConnection.reset();
    Init();
    Connect();
    return mConnection->connected;
}

bool TolmIpcClientSocket::SendLocked(TolmIpcMessageType type, const std::vector<unsigned char>& msg) {
    if (!ReconnectIfNeeded()) return false;
    if (msg.empty()) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Msg is empty");
        return false;
    }
    bool alive = true;
    const bool sent = SendInternalSocket(mConnection->fd, mPort, type, msg, alive);
    if (!alive) mConnection->connected = false;
    return sent;
}

bool TolmIpcClientSocket::Send(const std::vector<unsigned char>& msg) {
    std::lock_guard<std::mutex> lock(mMutex);
    return SendLocked(TOLM_IPC_MSG_ASYNC, msg);
}

bool TolmIpcClientSocket::SendSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply) {
    std::shared_ptr<Connection> connection;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (!SendLocked(TOLM_IPC_MSG_SYNC, msg)) return false;
        connection = mConnection;
    }
    // The next message is the reply, whatever its type and port.
    TolmIpcSocketMsgHeader header{};
    bool alive = true;
    const bool received = RecvInternalSocket(connection->fd, header, reply, alive);
    if (!alive) connection->connected = false;
    return received;
}

}  // namespace tolm
