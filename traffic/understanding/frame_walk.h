// Where messages begin and end in the bytes of one direction of a connection. Keeps no payloads.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace hbbtv::traffic {

// The library stores no longer payload.
constexpr uint32_t kLongestPayload = 16u << 20;

struct FrameHeader {
    uint32_t size = 0;  // of the payload
    int32_t type = 0;
    int32_t port = 0;
};
constexpr size_t kHeaderSize = 12;

class FrameWalk {
  public:
    // Consumes bytes of one message, to its end at most. Returns how many. Of bytes that are not messages, all are
    // consumed.
    size_t Step(const char* bytes, size_t count);

    // Returns whether the next byte is the first of a message.
    bool AtBegin() const { return mHave == 0; }

    // Returns whether the header has been read, and the payload has begun or is empty.
    bool InPayload() const { return mHave == kHeaderSize; }

    // Returns whether a header was not one: its type is unknown, and it announces more than any message has. Where the
    // next message begins is unknown as well.
    bool Damaged() const;

    // The header of the message, while InPayload(); its bytes that have been read.
    FrameHeader Header() const;
    const char* HeaderBytes() const { return mBytes.data(); }
    size_t HeaderBytesRead() const { return mHave; }

    // The bytes of the payload that are missing, while InPayload().
    uint32_t Left() const { return mLeft; }

    // The next byte is the first of a message. Call it after Step() when InPayload() and nothing is left.
    void Begin() { mHave = 0; }

  private:
    std::array<char, kHeaderSize> mBytes{};
    size_t mHave = 0;  // of the header
    uint32_t mLeft = 0;
};

}  // namespace hbbtv::traffic
