#include "connection/socket_reader.h"

#include <hwbinder/Parcel.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace android::hardware::host {

// Returns -1 with EPROTO for more descriptors than this process can hold, or than any peer sends in advance.
ssize_t SocketReader::ReceiveBytes(void* destination, size_t size, bool waits) {
    iovec piece = {destination, size};
    alignas(cmsghdr) char control[CMSG_SPACE(Descriptors::kMost * sizeof(int))];
    msghdr message = {};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof(control);
    const ssize_t n = recvmsg(mFd, &message, MSG_CMSG_CLOEXEC | (waits ? 0 : MSG_DONTWAIT));
    if (n < 0 || message.msg_controllen == 0) return n;
    for (cmsghdr* head = CMSG_FIRSTHDR(&message); head != nullptr; head = CMSG_NXTHDR(&message, head)) {
        if (head->cmsg_level != SOL_SOCKET || head->cmsg_type != SCM_RIGHTS) continue;
        for (size_t i = 0; i < (head->cmsg_len - CMSG_LEN(0)) / sizeof(int); ++i) {
            int fd = -1;
            memcpy(&fd, CMSG_DATA(head) + i * sizeof(fd), sizeof(fd));
            mDescriptors.Add(fd);
        }
    }
    if ((message.msg_flags & MSG_CTRUNC) == 0 && mDescriptors.Size() <= 2 * Descriptors::kMost) return n;
    errno = EPROTO;
    return -1;
}

bool SocketReader::TakeDescriptors(size_t count, Descriptors& taken) {
    if (count > mDescriptors.Size()) return false;
    if (count > 0) taken = mDescriptors.TakeFirst(count);
    return true;
}

SocketReader::Result SocketReader::Next(bool waits, FrameHead* head, std::unique_ptr<uint64_t[]>* body) {
    for (;;) {
        if (!mHasHead && TakeHead()) {
            const bool valid = mHead.magic == FrameHead::kMagic && mHead.descriptors <= Descriptors::kMost &&
                               mHead.bodySize <= Parcel::kMaxSize && mHead.bodySize % 8 == 0;
            if (!valid) return Result::kInvalid;
            if (mHead.bodySize > 0) mBody.reset(new uint64_t[mHead.bodySize / 8]);
        }
        if (mHasHead && TakeBody()) {
            *head = mHead;
            *body = std::move(mBody);
            mHasHead = false;
            return Result::kFrame;
        }
        if (!mMayReceive && !waits) return Result::kNothing;
        const Result result = Receive(waits);
        if (result != Result::kFrame) return result;
    }
}

bool SocketReader::TakeHead() {
    if (mEnd - mStart < sizeof(mHead)) return false;
    memcpy(&mHead, &mBuffer[mStart], sizeof(mHead));
    mStart += sizeof(mHead);
    mBodyRead = 0;
    return mHasHead = true;
}

bool SocketReader::TakeBody() {
    const size_t taken = std::min(mHead.bodySize - mBodyRead, mEnd - mStart);
    if (taken > 0) memcpy(reinterpret_cast<uint8_t*>(mBody.get()) + mBodyRead, &mBuffer[mStart], taken);
    mStart += taken;
    mBodyRead += taken;
    return mBodyRead == mHead.bodySize;
}

// Receives more of the frame: the body of a large one directly, anything else into the buffer. Returns kFrame if
// something has come.
SocketReader::Result SocketReader::Receive(bool waits) {
    const size_t rest = mHasHead ? mHead.bodySize - mBodyRead : 0;
    const bool direct = rest >= kBufferSize;
    if (!direct && mStart > 0) {
        memmove(mBuffer.get(), &mBuffer[mStart], mEnd - mStart);
        mEnd -= mStart;
        mStart = 0;
    }
    void* const to = direct ? reinterpret_cast<uint8_t*>(mBody.get()) + mBodyRead : &mBuffer[mEnd];
    const size_t room = direct ? rest : kBufferSize - mEnd;
    mMayReceive = false;
    ssize_t n;
    do {
        n = ReceiveBytes(to, room, waits);
    } while (n < 0 && errno == EINTR);
    if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return Result::kNothing;
    if (n <= 0) return Result::kEnd;
    if (direct) {
        mBodyRead += static_cast<size_t>(n);
    } else {
        mEnd += static_cast<size_t>(n);
    }
    return Result::kFrame;
}

}  // namespace android::hardware::host
