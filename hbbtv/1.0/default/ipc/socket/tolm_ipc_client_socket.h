// The IPC client over a Unix-domain stream socket. It connects when the first message is sent, and again after the
// server has gone.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "ipc/tolm_ipc_client.h"
#include "ipc/tolm_ipc_types.h"

namespace tolm {

class TolmIpcClientSocket : public TolmIpcClient {
  public:
    // Binds the client's own socket file; does not connect.
    TolmIpcClientSocket(TolmIpcKeyId key, int port);
    ~TolmIpcClientSocket() override;

    // Any thread. Each call makes at most one attempt to connect.
    bool Send(const std::vector<unsigned char>& msg) override;

    // One thread at a time, beside any number in Send().
    bool SendSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply) override;

  private:
    struct Connection;

    // All called with mMutex held, but for the constructor.
    bool Init();
    bool Connect();
    bool ReconnectIfNeeded();
    bool SendLocked(TolmIpcMessageType type, const std::vector<unsigned char>& msg);

    const std::string mSocketName;
    const int mPort;

    // Held while one message is written, never while a reply is waited for.
    std::mutex mMutex;

    // Guarded by mMutex. Who waits for a reply keeps the connection it was asked on, so that its descriptor is not
    // closed, and its number not given to another file, while that thread still reads from it.
    std::shared_ptr<Connection> mConnection;
};

}  // namespace tolm
