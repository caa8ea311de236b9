// Messages on the sockets: a header of 12 bytes, {size, type, port} in host byte order, and a payload of `size` bytes.
// The reader takes bytes as they arrive, and allocates no memory for bytes that are only announced.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace hbbtv {

constexpr int32_t kOneWay = 1;
constexpr int32_t kRequest = 2;
constexpr int32_t kReply = 3;

// No real message is nearly as large, so a header that announces more is damaged.
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

    // Returns the next complete message, if there is one.
    std::optional<Frame> Next();

    // Returns the size that the next header announces if it is above kLargestPayload. Nothing after it can be read.
    std::optional<uint32_t> Oversized() const;

    // Returns whether the bytes end in the middle of a message.
    bool InMessage() const { return mUsed < mBytes.size(); }

  private:
    std::string mBytes;
    size_t mUsed = 0;  // bytes that were returned; erased when the rest is not a complete message
};

}  // namespace hbbtv
