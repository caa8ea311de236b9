// The receiving half of a connection: reads large blocks, so that a small frame costs one system call. Used by one
// reader thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace android::hardware::host {

class SocketReader {
  public:
    explicit SocketReader(int fd) : mFd(fd), mBuffer(std::make_unique<uint8_t[]>(kBufferSize)) {}

    // Reads exactly `size` bytes. Returns false at the end of the stream. The part of a large read that is not buffered
    // is read directly into `destination`.
    bool Read(void* destination, size_t size);

  private:
    static constexpr size_t kBufferSize = 16 * 1024;

    const int mFd;
    const std::unique_ptr<uint8_t[]> mBuffer;
    size_t mStart = 0;
    size_t mEnd = 0;
};

}  // namespace android::hardware::host
