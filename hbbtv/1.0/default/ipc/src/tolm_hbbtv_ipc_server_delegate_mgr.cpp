#include "ipc/src/tolm_hbbtv_ipc_server_delegate_mgr.h"

TolmHbbtvIpcServerDelegateMgr& TolmHbbtvIpcServerDelegateMgr::Get() {
    static TolmHbbtvIpcServerDelegateMgr manager;
    return manager;
}

TolmHbbtvIpcServerDelegateMgr::~TolmHbbtvIpcServerDelegateMgr() {
    if (!TolmHbbtvIpcServerDelegate::InHandler()) delete &mServers;
}

void TolmHbbtvIpcServerDelegateMgr::CreateIpcServer(TolmIpcKeyId key, int port, tolm::TolmIpcServerDelegate* receiver) {
    std::lock_guard<std::mutex> lock(mMutex);
    std::shared_ptr<TolmHbbtvIpcServerDelegate>& server = mServers[key];
    if (server == nullptr) server = std::make_shared<TolmHbbtvIpcServerDelegate>(key);
    server->RegisterIpcServerDelegate(port, receiver);
}

void TolmHbbtvIpcServerDelegateMgr::DeleteIpcServer(TolmIpcKeyId key, int port) {
    // Waits for a handler without the mutex: the handler may be about to create the endpoint of another family.
    // Likewise for the threads of a server that is destroyed here because it has no port left.
    std::shared_ptr<TolmHbbtvIpcServerDelegate> server;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mServers.find(key);
        if (found == mServers.end()) return;
        server = found->second;
        server->UnRegisterIpcServerDelegate(port);
        if (server->GetNum() == 0) mServers.erase(found);
    }
    server->WaitForDelivery();
}
