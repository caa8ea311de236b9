// Creates IPC clients and servers. Nothing else depends on the transport.
#pragma once

#include <memory>
#include <mutex>

#include "ipc/tolm_ipc_client.h"
#include "ipc/tolm_ipc_server.h"
#include "ipc/tolm_ipc_types.h"

namespace tolm {

class TolmIpcFactory {
  public:
    // Returns the factory, which is never destroyed.
    static TolmIpcFactory* GetInstance();

    // Returns a client, or null for an unknown type. `port` identifies the client to the server.
    std::unique_ptr<TolmIpcClient> CreateIpcClient(TolmIpcKeyId key, int port, TolmIpcType type);

    // Returns a server, or null for an unknown type. The delegate must outlive it.
    std::unique_ptr<TolmIpcServer> CreateIpcServer(TolmIpcKeyId key, TolmIpcServerDelegate* delegate, TolmIpcType type);

  private:
    TolmIpcFactory() = default;

    static TolmIpcFactory* sInstance;
    static std::mutex sMutex;
};

}  // namespace tolm
