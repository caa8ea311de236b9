// What travels between two processes: frames of a fixed head and a body. Both ends are processes of one machine, so
// numbers are in the machine's order.
#pragma once

#include <cstdint>

namespace android {
namespace hardware {
namespace host {

enum class FrameType : uint32_t {
    kCall = 1,     // body: arguments. Answered by one kReply with the same id.
    kOneway = 2,   // body: arguments. Not answered.
    kReply = 3,    // body: results, or none when status is not OK
    kRelease = 4,  // the sender no longer refers to a node of the receiver; id: how often it had been sent
    kLookup = 5,   // body: the name of a service. Answered by kReply with one node. Only to the serving side.
};

struct FrameHead {
    static constexpr uint32_t kMagic = 0x484f5354;

    uint32_t magic;
    uint32_t type;
    uint32_t bodySize;
    uint32_t code;   // of a call: the method
    int32_t status;  // of a reply
    uint32_t zero;
    uint64_t id;      // numbers the calls of one direction
    uint64_t parent;  // of a call: the receiver's own call that the sender is serving while it makes this one, or 0
    uint64_t node;    // of the receiver
};
static_assert(sizeof(FrameHead) == 48, "the same in every process");

}  // namespace host
}  // namespace hardware
}  // namespace android
