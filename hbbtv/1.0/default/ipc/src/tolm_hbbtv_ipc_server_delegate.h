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

    // The receiver is called no more once WaitForDelivery() has returned.
    void UnRegisterIpcServerDelegate(int port);

    // Waits for a handler that is running. Not from inside one.
    void WaitForDelivery();

    // Called by the server. One message of the key is handled at a time.
    void OnRecv(const std::vector<unsigned char>& msg, int port) override;
    void OnRecvSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply, int port) override;

    // Number of registered ports.
    size_t GetNum();

    // Whether the calling thread is inside a receiver's handler.
    static bool InHandler();

  private:
    tolm::TolmIpcServerDelegate* Find(int port);

    const TolmIpcKeyId mKey;
    std::mutex mDelivery;  // held while a receiver runs; taken before all other mutexes
    std::mutex mMutex;     // held for no longer than it takes to look into the map
    std::unordered_map<int, tolm::TolmIpcServerDelegate*> mReceivers;  // guarded by mMutex
    std::unique_ptr<tolm::TolmIpcServer> mServer;
};
