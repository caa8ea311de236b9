#include "ipc/tolm_ipc_factory.h"

#include "ipc/socket/tolm_ipc_client_socket.h"
#include "ipc/socket/tolm_ipc_server_socket.h"
#include "ipc/tolm_log.h"

namespace tolm {

TolmIpcFactory* TolmIpcFactory::sInstance = nullptr;
std::mutex TolmIpcFactory::sMutex;

TolmIpcFactory* TolmIpcFactory::GetInstance() {
    std::lock_guard<std::mutex> lock(sMutex);
    if (sInstance == nullptr) sInstance = new TolmIpcFactory();
    return sInstance;
}

// The platform's log filters rely on "Create socket ..." being an error.
std::unique_ptr<TolmIpcClient> TolmIpcFactory::CreateIpcClient(TolmIpcKeyId key, int port, TolmIpcType type) {
    if (type == TOLM_IPC_TYPE_SOCKET) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Create socket client");
        return std::make_unique<TolmIpcClientSocket>(key, port);
    }
    if (type != 0) TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Create ipc client type error");
    TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Create ipc client error");
    return nullptr;
}

std::unique_ptr<TolmIpcServer> TolmIpcFactory::CreateIpcServer(TolmIpcKeyId key, TolmIpcServerDelegate* delegate,
                                                               TolmIpcType type) {
    if (type == TOLM_IPC_TYPE_SOCKET) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Create socket server");
        return std::make_unique<TolmIpcServerSocket>(key, delegate);
    }
    if (type != 0) TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Create ipc server type error");
    TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Create ipc server error");
    return nullptr;
}

}  // namespace tolm
