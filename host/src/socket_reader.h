// The receiving half of a connection: takes what the socket has in large pieces, so that a small frame costs one system
// call. Used by one reader thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace android {
namespace hardware {
namespace host {

class SocketReader {
  public:
    explicit SocketReader(int fd) : mFd(fd), mBuffer(std::make_unique<uint8_t[]>(kBufferSize)) {}

    // Waits for exactly so many bytes; false at the end of the stream. The part of a large piece that has not arrived
    // yet is read straight into its place.
    bool Read(void* destination, size_t size);

  private:
    static constexpr size_t kBufferSize = 16 * 1024;

    const int mFd;
    const std::unique_ptr<uint8_t[]> mBuffer;
    size_t mStart = 0;
    size_t mEnd = 0;
};

}  // namespace host
}  // namespace hardware
}  // namespace android
