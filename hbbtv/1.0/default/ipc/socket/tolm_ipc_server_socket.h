// The IPC server over a Unix-domain stream socket: one thread accepts, and each connection has its own thread.
#pragma once

#include <sys/un.h>

#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>

#include "ipc/status/tolm_endpoint_status.h"
#include "ipc/tolm_ipc_server.h"
#include "ipc/tolm_ipc_types.h"
#include "ipc/tolm_thread.h"

namespace tolm {

class TolmIpcServerSocket : public TolmIpcServer {
  public:
    // Creates the key's socket file, replacing an old one, and listens on it. A failure is logged; the server can still
    // be started, but its accept calls fail.
    TolmIpcServerSocket(TolmIpcKeyId key, TolmIpcServerDelegate* delegate);

    // Ends all connections, joins all threads and waits for a delegate that is running.
    ~TolmIpcServerSocket() override;

    // Starts accepting. Further calls do nothing.
    void Start() override;

  private:
    struct Connection {
        int fd;  // -1 once it is closed
        TolmThread thread;
    };
    using Connections = std::list<Connection>;

    void Listen(const std::string& path);

    // On the accept thread.
    void Run();
    void WaitForDescriptor();
    void StartConnection(int fd, const sockaddr_un& peer);
    void WaitForRoom();
    void PauseAfterFailures(int failures);
    void Pause(std::chrono::milliseconds time);

    // On a connection's thread. The peer's address is not used.
    void OnRecv(int fd, sockaddr_un peer);
    void EndConnection(Connections::iterator connection);

    bool Running();

    int mListenFd = -1;
    TolmIpcServerDelegate* const mDelegate;
    EndpointStatus& mStatus;
    TolmThread mAcceptThread;

    std::mutex mMutex;
    std::condition_variable mChanged;  // mRunning became false, or a connection ended
    bool mRunning = false;             // guarded by mMutex
    Connections mConnections;          // guarded by mMutex
    TolmThread mEnded;                 // guarded by mMutex; joined by the next thread that ends, or by the destructor
};

}  // namespace tolm
