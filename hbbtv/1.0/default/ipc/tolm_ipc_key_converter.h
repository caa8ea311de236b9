// The table of all IPC endpoints: which message queue and which socket file belong to a key. Both sides of the wire
// have to use the same names, so a row is never changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

#include "ipc/tolm_ipc_types.h"

namespace tolm {

struct TolmIpcKey {
    uint32_t msgQueueId;  // for the platform's other transports; this library opens no queue
    int32_t reserved;     // always 0, read by nothing
    std::string socketName;
};

// All functions may be called from any thread.
class TolmIpcKeyConverter {
  public:
    // Never destroyed.
    static TolmIpcKeyConverter* GetInstance();

    // The key's message-queue id. An unknown key gives 0 and adds an all-zero row to the table.
    int GetMsgQueueId(TolmIpcKeyId key);

    // The key's socket name, valid for ever. An unknown key gives an empty name and an error line.
    const std::string& GetSocketName(TolmIpcKeyId key);

    size_t GetNum();

  private:
    TolmIpcKeyConverter();

    static TolmIpcKeyConverter* sInstance;
    static std::mutex sMutex;

    std::mutex mMutex;
    std::map<TolmIpcKeyId, TolmIpcKey> mKeys;  // guarded by mMutex; rows are added, never changed or removed
};

// Path of the socket that a server of this name listens on. The directory is the environment variable TMPDIR, or /tmp
// without it, as it was when the first path was made.
std::string GetSocketFilePath(const std::string& name);

// Path of the socket that the client with this port binds for itself.
std::string GetSocketFilePath(const std::string& name, int port);

}  // namespace tolm
