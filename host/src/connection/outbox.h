// The sending half of a connection. Thread-safe: frames are sent whole and in order. Sending does not block: what the
// socket does not accept is queued, and sent by a separate thread. A peer that does not read cannot block this process:
// above a limit, calls are refused, as on the device when the receiver's buffer is full.
#pragma once

#include <hwbinder/Descriptors.h>
#include <utils/Errors.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

struct iovec;

namespace android::hardware::host {

class Outbox : public std::enable_shared_from_this<Outbox> {
  public:
    // Takes ownership of the descriptor.
    explicit Outbox(int fd) : mFd(fd) {}
    ~Outbox();

    enum class Patience {
        kNone,  // queues the frame whatever the length of the queue: for frames that cannot be refused, and reader
                // threads
        kSome,  // waits for room for a limited time, then refuses the frame with FAILED_TRANSACTION
    };

    // Returns OK if the frame was sent or queued, DEAD_OBJECT if the peer is gone. The descriptors are sent with its
    // first byte.
    status_t Send(iovec* pieces, int count, Patience patience, const Descriptors& descriptors = {});

    // Shuts the connection down in both directions, which ends the reader. The descriptor stays open.
    void Shutdown();

    // Drops the queue and closes the descriptor. Called once, by the reader at its end.
    void Close();

  private:
    struct Frame {
        std::vector<uint8_t> bytes;
        Descriptors descriptors;
    };

    bool WaitForRoomLocked(std::unique_lock<std::mutex>& lock, size_t size);
    status_t SendNowLocked(iovec*& pieces, int& count, const Descriptors*& descriptors);
    void KeepLocked(const iovec* pieces, int count, Descriptors&& descriptors);
    void StartFlusherLocked();
    void Flush();
    bool FlushSomeLocked();

    std::mutex mMutex;
    std::condition_variable mChanged;
    int mFd;
    bool mBroken = false;    // the peer is gone
    bool mStalled = false;   // a sender has waited for room without success; cleared when there is room again
    bool mFlushing = false;  // a thread is flushing the queue
    std::deque<Frame> mWaiting;
    size_t mSentOfFirst = 0;
    size_t mWaitingBytes = 0;
};

}  // namespace android::hardware::host
