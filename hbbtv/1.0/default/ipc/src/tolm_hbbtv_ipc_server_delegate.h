// The receivers of one endpoint, told apart by the port in each message, and the server that they share.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include "ipc/tolm_ipc_server.h"
#include "ipc/tolm_ipc_types.h"

class TolmHbbtvIpcServerDelegate : public tolm::TolmIpcServerDelegate {
  public:
    // Creates the key's server and starts it.
    explicit TolmHbbtvIpcServerDelegate(TolmIpcKeyId key);

    // Ends the server before anything else goes: no message is delivered any more when this returns.
    ~TolmHbbtvIpcServerDelegate() override;

    // The first receiver of a port stays; another one is refused with an error line. The receiver is not owned.
    void RegisterIpcServerDelegate(int port, tolm::TolmIpcServerDelegate* receiver);

    // Waits for a delivery that is under way: when it returns, the receiver is called no more.
    void UnRegisterIpcServerDelegate(int port);

    // Called by the server. One message of the key is handled at a time; a receiver must not register or unregister on
    // its own key from inside its handler.
    void OnRecv(const std::vector<unsigned char>& msg, int port) override;
    void OnRecvSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply, int port) override;

    // Number of registered ports.
    size_t GetNum();

    // Whether the calling thread is inside a receiver's handler.
    static bool InHandler();

  private:
    tolm::TolmIpcServerDelegate* FindLocked(int port);

    const TolmIpcKeyId mKey;
    std::mutex mMutex;
    std::unordered_map<int, tolm::TolmIpcServerDelegate*> mReceivers;  // guarded by mMutex
    std::unique_ptr<tolm::TolmIpcServer> mServer;
};
