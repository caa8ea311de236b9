// The endpoints that this process serves. The server of a key exists as long as the key has receivers.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include "ipc/src/tolm_hbbtv_ipc_server_delegate.h"

// Thread-safe. A receiver's handler may use it only for keys other than its own.
class TolmHbbtvIpcServerDelegateMgr {
  public:
    // Returns the manager. It is destroyed at process exit, which stops all servers, unless a handler ends the process:
    // that handler cannot be waited for.
    static TolmHbbtvIpcServerDelegateMgr& Get();

    void CreateIpcServer(TolmIpcKeyId key, int port, tolm::TolmIpcServerDelegate* receiver);

    // When it returns, the receiver is not called any more.
    void DeleteIpcServer(TolmIpcKeyId key, int port);

  private:
    using Servers = std::unordered_map<TolmIpcKeyId, std::shared_ptr<TolmHbbtvIpcServerDelegate>>;

    TolmHbbtvIpcServerDelegateMgr() = default;
    ~TolmHbbtvIpcServerDelegateMgr();

    std::mutex mMutex;                 // never held while a handler is waited for
    Servers& mServers = *new Servers;  // guarded by mMutex; on the heap, so that the destructor can leave it there
};
