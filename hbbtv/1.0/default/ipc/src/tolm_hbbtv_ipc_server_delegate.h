// The receivers of one endpoint, selected by the port in each message, and the server that they share.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include "ipc/status/tolm_endpoint_status.h"
#include "ipc/tolm_ipc_server.h"
#include "ipc/tolm_ipc_types.h"

class TolmHbbtvIpcServerDelegate : public tolm::TolmIpcServerDelegate {
  public:
    // Creates and starts the key's server.
    explicit TolmHbbtvIpcServerDelegate(TolmIpcKeyId key);

    // Stops the server first: when it returns, no message is delivered any more.
    ~TolmHbbtvIpcServerDelegate() override;

    // Adds the receiver of a port, which is not owned. A second one is refused, and an error is logged.
    void RegisterIpcServerDelegate(int port, tolm::TolmIpcServerDelegate* receiver);

    // Removes the receiver of a port. It is not called any more once WaitForDelivery() has returned.
    void UnRegisterIpcServerDelegate(int port);

    // Waits for a handler that is running. Must not be called by a handler.
    void WaitForDelivery();

    // Called by the server. Messages of the key are handled one at a time.
    void OnRecv(const std::vector<unsigned char>& msg, int port) override;
    void OnRecvSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply, int port) override;

    // Returns the number of registered ports.
    size_t GetNum();

    // Returns whether the calling thread runs a receiver's handler.
    static bool InHandler();

  private:
    tolm::TolmIpcServerDelegate* Find(int port);
    std::unique_lock<std::mutex> WaitForTurn();

    const TolmIpcKeyId mKey;
    tolm::EndpointStatus& mStatus;
    std::mutex mDelivery;  // held while a receiver runs; taken before all other mutexes
    std::mutex mMutex;     // never held while a receiver runs
    std::unordered_map<int, tolm::TolmIpcServerDelegate*> mReceivers;  // guarded by mMutex
    std::unique_ptr<tolm::TolmIpcServer> mServer;
};
