#include "traffic/understanding/frame_walk.h"

#include <algorithm>
#include <cstring>

#include "common/frame.h"

namespace hbbtv::traffic {

FrameHeader FrameWalk::Header() const {
    static_assert(sizeof(FrameHeader) == kHeaderSize, "the header has no padding");
    FrameHeader header;
    std::memcpy(&header, mBytes.data(), sizeof(header));
    return header;
}

bool FrameWalk::Damaged() const {
    if (!InPayload()) return false;
    const FrameHeader header = Header();
    return header.size > kLongestPayload && (header.type < kOneWay || header.type > kReply);
}

size_t FrameWalk::Step(const char* bytes, size_t count) {
    if (Damaged()) return count;
    size_t used = 0;
    if (!InPayload()) {
        used = std::min(count, kHeaderSize - mHave);
        std::memcpy(mBytes.data() + mHave, bytes, used);
        mHave += used;
        if (!InPayload()) return used;
        mLeft = Header().size;
        if (Damaged()) return count;
    }
    const size_t payload = std::min<size_t>(mLeft, count - used);
    mLeft -= static_cast<uint32_t>(payload);
    return used + payload;
}

}  // namespace hbbtv::traffic
