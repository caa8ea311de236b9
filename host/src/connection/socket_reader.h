// The receiving half of a connection. Reads large blocks, so that small frames cost one system call at most. Used by
// one thread at a time.
#pragma once

#include <hwbinder/Descriptors.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>

#include "connection/frame.h"

namespace android::hardware::host {

class SocketReader {
  public:
    explicit SocketReader(int fd) : mFd(fd), mBuffer(std::make_unique<uint8_t[]>(kBufferSize)) {}

    enum class Result {
        kFrame,
        kNothing,  // the rest of the next frame has not arrived
        kEnd,      // of the stream
        kInvalid,  // not a frame
    };

    // Reads the next frame. Its body is null if it is empty. If `waits`, kNothing is never returned; otherwise, at most
    // one system call is made after each MayReceive(true), so that no connection takes up a thread.
    Result Next(bool waits, FrameHead* head, std::unique_ptr<uint64_t[]>* body);
    void MayReceive(bool may) { mMayReceive = may; }

    // Moves the next `count` descriptors that have arrived to `taken`. Those of a frame arrive with its first byte.
    // Returns false if there are fewer.
    bool TakeDescriptors(size_t count, Descriptors& taken);

  private:
    static constexpr size_t kBufferSize = 4 * 1024;

    // Return whether the head or the body is complete.
    bool TakeHead();
    bool TakeBody();
    Result Receive(bool waits);
    ssize_t ReceiveBytes(void* destination, size_t size, bool waits);

    const int mFd;
    const std::unique_ptr<uint8_t[]> mBuffer;
    size_t mStart = 0;
    size_t mEnd = 0;
    bool mMayReceive = false;

    // The frame whose head has been read.
    bool mHasHead = false;
    FrameHead mHead = {};
    std::unique_ptr<uint64_t[]> mBody;
    size_t mBodyRead = 0;
    Descriptors mDescriptors;  // that have arrived and were not taken
};

}  // namespace android::hardware::host
