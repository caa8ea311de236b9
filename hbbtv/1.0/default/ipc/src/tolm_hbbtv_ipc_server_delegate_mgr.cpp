#include "ipc/src/tolm_hbbtv_ipc_server_delegate_mgr.h"

TolmHbbtvIpcServerDelegateMgr& TolmHbbtvIpcServerDelegateMgr::Get() {
    static TolmHbbtvIpcServerDelegateMgr g_mgr;
    return g_mgr;
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
    // Destroyed after the mutex is released: ending a server waits for its threads, and a handler on one of them may be
    // about to create the endpoint of another family.
    std::shared_ptr<TolmHbbtvIpcServerDelegate> last;
    std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mServers.find(key);
    if (found == mServers.end()) return;
    found->second->UnRegisterIpcServerDelegate(port);
    if (found->second->GetNum() > 0) return;
    last = std::move(found->second);
    mServers.erase(found);
}
