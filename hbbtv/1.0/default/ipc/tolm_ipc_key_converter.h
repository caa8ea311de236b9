// The table of all IPC endpoints: the message queue and the socket file of each key. Both sides of the wire must use
// the same names, so rows never change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

#include "ipc/tolm_ipc_types.h"

namespace tolm {

struct TolmIpcKey {
    uint32_t msgQueueId;  // for the platform's other transports; this library does not open queues
    int32_t reserved;     // always 0, never read
    std::string socketName;
};

// Thread-safe.
class TolmIpcKeyConverter {
  public:
    // Returns the table, which is never destroyed.
    static TolmIpcKeyConverter* GetInstance();

    // Returns the key's message-queue id. For an unknown key, returns 0 and adds an all-zero row to the table.
    int GetMsgQueueId(TolmIpcKeyId key);

    // Returns the key's socket name, which stays valid. For an unknown key, logs an error and returns an empty name.
    const std::string& GetSocketName(TolmIpcKeyId key);

    size_t GetNum();

  private:
    TolmIpcKeyConverter();

    static TolmIpcKeyConverter* sInstance;
    static std::mutex sMutex;

    std::mutex mMutex;
    std::map<TolmIpcKeyId, TolmIpcKey> mKeys;  // guarded by mMutex; rows are added, never changed or removed
};

// Returns the path of the socket that a server of this name listens on. The directory is the environment variable
// TMPDIR at the time of the first call (default: /dev/socket/hbbtv on Android, /tmp elsewhere).
std::string GetSocketFilePath(const std::string& name);

// Returns the path of the socket that the client with this port binds.
std::string GetSocketFilePath(const std::string& name, int port);

}  // namespace tolm
