// All endpoints that this process serves: creates the server of a key with its first receiver and ends it with its
// last.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include "ipc/src/tolm_hbbtv_ipc_server_delegate.h"

// Any thread; a receiver's handler only for other keys than its own.
class TolmHbbtvIpcServerDelegateMgr {
  public:
    // Destroyed when the process exits, which ends all servers; but for a process that ends from inside a handler,
    // which cannot be waited for.
    static TolmHbbtvIpcServerDelegateMgr& Get();

    void CreateIpcServer(TolmIpcKeyId key, int port, tolm::TolmIpcServerDelegate* receiver);

    // When it returns, the receiver is called no more.
    void DeleteIpcServer(TolmIpcKeyId key, int port);

  private:
    using Servers = std::unordered_map<TolmIpcKeyId, std::shared_ptr<TolmHbbtvIpcServerDelegate>>;

    TolmHbbtvIpcServerDelegateMgr() = default;
    ~TolmHbbtvIpcServerDelegateMgr();

    std::mutex mMutex;                 // never held while a handler is waited for
    Servers& mServers = *new Servers;  // guarded by mMutex; on the heap, to be left there by the destructor
};
