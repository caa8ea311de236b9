// The threads that read the connections on which no caller waits for a reply. A connection is armed when data that
// arrives is to be read by one of them; the one that gets it does not get it again until it is armed again.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "connection/thread_pool.h"

namespace android::hardware::host {

// A connection.
class Pollable {
  public:
    virtual ~Pollable() = default;

    // Reads what has arrived, without waiting for more. Returns a call that the thread may serve itself, or null.
    virtual std::unique_ptr<Task> Readable() = 0;
};

// Thread-safe. One per process, never destroyed.
class Poller {
  public:
    static Poller& Get();

    // Adds a connection, armed, and holds it until it is removed. Returns its number, or 0 if that is not possible.
    uint64_t Add(int fd, const std::shared_ptr<Pollable>& connection);
    void Remove(int fd, uint64_t number);

    void Arm(int fd, uint64_t number);
    void Disarm(int fd, uint64_t number);

  private:
    Poller();
    std::shared_ptr<Pollable> Find(uint64_t number);
    bool StartReader();
    [[noreturn]] void Run();
    void RunOrPost(std::unique_ptr<Task> call);

    const int mSet;

    std::atomic<int> mReaders{0};
    std::atomic<int> mWaiting{0};  // readers that wait for data

    std::mutex mMutex;
    uint64_t mLastNumber = 0;
    std::unordered_map<uint64_t, std::shared_ptr<Pollable>> mConnections;
};

}  // namespace android::hardware::host
