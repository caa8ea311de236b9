#include "traffic/understanding/message_stream.h"

#include <algorithm>
#include <utility>

#include "common/frame.h"

namespace hbbtv::traffic {

namespace {

Message WithHeader(const FrameWalk& walk) {
    Message message;
    const FrameHeader header = walk.Header();
    message.size = header.size;
    message.type = header.type;
    message.port = header.port;
    return message;
}

}  // namespace

void MessageStream::Take(const std::string& bytes, const Taker& take) {
    for (size_t at = 0; at < bytes.size();) {
        const size_t header = kHeaderSize - std::min(mWalk.HeaderBytesRead(), kHeaderSize);
        const size_t used = mWalk.Step(bytes.data() + at, bytes.size() - at);
        if (mWalk.Damaged()) return TakeDamaged(bytes.data() + at, used, std::min(header, used), take);
        if (used > header && mPayload.size() < kLargestPayload) {
            mPayload.append(bytes, at + header, std::min(used - header, kLargestPayload - mPayload.size()));
        }
        at += used;
        if (!mWalk.InPayload() || mWalk.Left() > 0) continue;
        Message message = Complete();
        mWalk.Begin();
        take(std::move(message), false);
    }
}

// The first piece begins with the header, of which a part may have come before; `header` bytes of these are of it.
void MessageStream::TakeDamaged(const char* bytes, size_t count, size_t header, const Taker& take) {
    Message message = WithHeader(mWalk);
    if (!std::exchange(mDamaged, true)) message.raw.assign(mWalk.HeaderBytes(), kHeaderSize);
    message.raw.append(bytes + header, count - header);
    take(std::move(message), true);
}

Message MessageStream::Complete() {
    Message message = WithHeader(mWalk);
    if (mPayload.size() < message.size) {
        message.raw = std::move(mPayload);
    } else {
        SetPayload(message, mPayload);
    }
    mPayload.clear();
    return message;
}

std::optional<Message> MessageStream::Rest() const {
    if (mWalk.AtBegin() || mWalk.Damaged()) return std::nullopt;
    Message message;
    if (mWalk.InPayload()) {
        message = WithHeader(mWalk);
        message.raw = mPayload;
    } else {
        message.raw.assign(mWalk.HeaderBytes(), mWalk.HeaderBytesRead());
    }
    return message;
}

void MessageStream::Restart() {
    mWalk = FrameWalk();
    mPayload.clear();
    mDamaged = false;
}

}  // namespace hbbtv::traffic
