// The frames that two processes exchange: a fixed head and a body. Both processes are on one machine, so numbers are in
// host byte order.
#pragma once

#include <cstdint>

namespace android::hardware::host {

enum class FrameType : uint32_t {
    kCall = 1,     // body: arguments. Answered by one kReply with the same id.
    kOneway = 2,   // body: arguments. Not answered.
    kReply = 3,    // body: results, or none if status is not OK
    kRelease = 4,  // the sender no longer refers to a node of the receiver; id: how often it was sent
    kLookup = 5,   // body: the name of a service. Answered by one kReply with one node. To the serving side only.
};

struct FrameHead {
    static constexpr uint32_t kMagic = 0x484f5354;

    uint32_t magic;
    uint32_t type;
    uint32_t bodySize;
    uint32_t code;         // of a call: the method
    int32_t status;        // of a reply
    uint32_t descriptors;  // number of file descriptors that are sent with the head
    uint64_t id;           // numbers the calls of one direction
    uint64_t parent;       // of a call: the receiver's call that the sender is serving, or 0
    uint64_t node;         // the receiver's
};
static_assert(sizeof(FrameHead) == 48, "the same in every process");

}  // namespace android::hardware::host
