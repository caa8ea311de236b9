// The sending half of a connection. Frames go out whole and in order, from any thread. Sending does not block: what the
// socket does not take is kept and sent by a thread of its own. A peer that does not read cannot stop this process:
// from a limit on calls are refused, as on the device when the receiver's buffer is full.
#pragma once

#include <utils/Errors.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

struct iovec;

namespace android {
namespace hardware {
namespace host {

class Outbox : public std::enable_shared_from_this<Outbox> {
  public:
    // Takes over the descriptor.
    explicit Outbox(int fd) : mFd(fd) {}
    ~Outbox();

    enum class Patience {
        kNone,  // keeps the frame however much waits already. For what cannot be refused, and for reader threads.
        kSome,  // waits a little for room, then refuses with FAILED_TRANSACTION
    };

    // OK when the frame is on its way, DEAD_OBJECT when the peer is gone.
    status_t Send(iovec* pieces, int count, Patience patience);

    // Ends the connection in both directions: the reader comes to its end. The descriptor stays open.
    void Shutdown();

    // Drops what waits and closes the descriptor. Called once, by the reader when it is done with it.
    void Close();

  private:
    bool WaitForRoomLocked(std::unique_lock<std::mutex>& lock, size_t size);
    status_t SendNowLocked(iovec*& pieces, int& count);
    void KeepLocked(const iovec* pieces, int count);
    void StartFlusherLocked();
    void Flush();
    bool FlushSomeLocked();

    std::mutex mMutex;
    std::condition_variable mChanged;
    int mFd;
    bool mBroken = false;    // the peer is gone
    bool mStalled = false;   // a sender has waited for room in vain; cleared when there is room again
    bool mFlushing = false;  // the thread of its own runs
    std::deque<std::vector<uint8_t>> mWaiting;
    size_t mSentOfFirst = 0;
    size_t mWaitingBytes = 0;
};

}  // namespace host
}  // namespace hardware
}  // namespace android
