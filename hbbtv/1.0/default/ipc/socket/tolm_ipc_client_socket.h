// The IPC client over a Unix-domain stream socket. Connects for the first message, and again after the server has
// closed the connection, or the client has: when ReplyTimeout() passes, an exchange is given up and the connection with
// it, so that what is still to come cannot be taken for the reply to a later request.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>

#include "ipc/socket/tolm_ipc_deadline.h"
#include "ipc/status/tolm_endpoint_status.h"
#include "ipc/tolm_ipc_client.h"
#include "ipc/tolm_ipc_types.h"

namespace tolm {

class TolmIpcClientSocket : public TolmIpcClient {
  public:
    // Binds the client's own socket file; does not connect.
    TolmIpcClientSocket(TolmIpcKeyId key, int port);
    ~TolmIpcClientSocket() override;

    // Thread-safe. Makes at most one attempt to connect.
    bool Send(const std::vector<unsigned char>& msg) override;

    // One thread at a time; other threads may call Send() concurrently.
    bool SendSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply) override;

  private:
    struct Connection;

    // Called with mMutex held, except by the constructor.
    bool Init();
    bool Connect(const Deadline& deadline);
    bool ReconnectIfNeeded(const Deadline& deadline);
    bool SendLocked(TolmIpcMessageType type, const std::vector<unsigned char>& msg, const Deadline& deadline);

    const std::string mSocketName;
    const int mPort;
    EndpointStatus& mStatus;
    const std::chrono::milliseconds mTimeout;  // for one message, from connecting to the end of its reply; 0: none

    // Held while a message is written, never while waiting for a reply.
    DeadlineMutex mMutex;

    // Guarded by mMutex. A thread that waits for a reply shares the connection, so that its descriptor is not closed
    // and reused for another file while that thread reads from it.
    std::shared_ptr<Connection> mConnection;
};

}  // namespace tolm
