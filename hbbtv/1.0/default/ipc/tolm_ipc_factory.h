// Makes IPC clients and servers. It alone knows which transports exist.
#pragma once

#include <memory>
#include <mutex>

#include "ipc/tolm_ipc_client.h"
#include "ipc/tolm_ipc_server.h"
#include "ipc/tolm_ipc_types.h"

namespace tolm {

class TolmIpcFactory {
  public:
    // Never destroyed.
    static TolmIpcFactory* GetInstance();

    // A client, or null for an unknown type. `port` tells the server who sends.
    std::unique_ptr<TolmIpcClient> CreateIpcClient(TolmIpcKeyId key, int port, TolmIpcType type);

    // A server, or null for an unknown type. The delegate has to outlive it.
    std::unique_ptr<TolmIpcServer> CreateIpcServer(TolmIpcKeyId key, TolmIpcServerDelegate* delegate, TolmIpcType type);

  private:
    TolmIpcFactory() = default;

    static TolmIpcFactory* sInstance;
    static std::mutex sMutex;
};

}  // namespace tolm
