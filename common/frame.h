// The messages on the sockets: a 12-byte header in the host's byte order, {size, type, port}, and `size` bytes behind
// it. The reader takes bytes as they come and never sets memory aside for bytes that are only announced.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace hbbtv {

constexpr int32_t kOneWay = 1;
constexpr int32_t kRequest = 2;
constexpr int32_t kReply = 3;

// No message of the interface comes near; a header that announces more is taken for damage.
constexpr uint32_t kLargestPayload = 4u << 20;

struct Frame {
    int32_t type = 0;
    int32_t port = 0;
    std::string payload;
};

std::string Encode(const Frame& frame);

class FrameReader {
  public:
    void Take(const char* bytes, size_t count) { mBytes.append(bytes, count); }

    // The next whole message, if there is one.
    std::optional<Frame> Next();

    // The size that the header in front announces, when it is above kLargestPayload. Nothing behind it can be read.
    std::optional<uint32_t> Oversized() const;

    // Whether the bytes end in the middle of a message.
    bool InMessage() const { return mUsed < mBytes.size(); }

  private:
    std::string mBytes;
    size_t mUsed = 0;  // bytes at the front that were handed out; dropped when the rest is not a whole message
};

}  // namespace hbbtv
