#include "connection/outbox.h"

#include <hwbinder/Parcel.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include "connection/thread_pool.h"
#include "log/host_log.h"

namespace android::hardware::host {

namespace {

// Calls are refused while more than this is queued for the peer.
constexpr size_t kRoomForCalls = 4 * Parcel::kMaxSize;
// A peer with a longer queue has stopped reading. Only messages that cannot be refused, such as replies, get this far.
constexpr size_t kMostWaiting = 4 * kRoomForCalls;
// How long a sender waits for room before it is refused.
constexpr std::chrono::seconds kPatience{1};

size_t TotalSize(const iovec* pieces, int count) {
    size_t size = 0;
    for (int i = 0; i < count; ++i) size += pieces[i].iov_len;
    return size;
}

// The memory of a control message with descriptors.
class ControlMessage {
  public:
    void AddTo(msghdr& message, const Descriptors& descriptors) {
        const size_t size = descriptors.Size() * sizeof(int);
        message.msg_control = mMemory;
        message.msg_controllen = CMSG_SPACE(size);
        cmsghdr* const head = CMSG_FIRSTHDR(&message);
        head->cmsg_level = SOL_SOCKET;
        head->cmsg_type = SCM_RIGHTS;
        head->cmsg_len = CMSG_LEN(size);
        memcpy(CMSG_DATA(head), &descriptors[0], size);
    }

  private:
    alignas(cmsghdr) char mMemory[CMSG_SPACE(Descriptors::kMost * sizeof(int))] = {};
};

}  // namespace

Outbox::~Outbox() {
    if (mFd >= 0) close(mFd);
}

status_t Outbox::Send(iovec* pieces, int count, Patience patience, const Descriptors& descriptors) {
    const Descriptors* unsent = descriptors.Size() == 0 ? nullptr : &descriptors;
    std::unique_lock<std::mutex> lock(mMutex);
    if (mBroken) return DEAD_OBJECT;
    if (mWaiting.empty()) {
        const status_t status = SendNowLocked(pieces, count, unsent);
        if (status != OK || count == 0) return status;
    } else if (patience == Patience::kSome && !WaitForRoomLocked(lock, TotalSize(pieces, count))) {
        return mBroken ? DEAD_OBJECT : FAILED_TRANSACTION;
    }
    Descriptors kept;
    for (size_t i = 0; unsent != nullptr && i < unsent->Size(); ++i) {
        if (!kept.AddCopyOf((*unsent)[i])) return FAILED_TRANSACTION;  // nothing of the frame has been sent
    }
    KeepLocked(pieces, count, std::move(kept));
    if (!mBroken && !mFlushing && patience == Patience::kSome) {
        // No thread could be started, and this one may wait for the peer.
        mFlushing = true;
        lock.unlock();
        Flush();
        lock.lock();
    }
    return mBroken ? DEAD_OBJECT : OK;
}

bool Outbox::WaitForRoomLocked(std::unique_lock<std::mutex>& lock, size_t size) {
    const auto hasRoom = [&] { return mBroken || mWaitingBytes + size <= kRoomForCalls; };
    if (!hasRoom() && !mStalled) mStalled = !mChanged.wait_for(lock, kPatience, hasRoom);
    return hasRoom() && !mBroken;
}

// Sends what the socket accepts, and leaves the rest in `pieces`.
status_t Outbox::SendNowLocked(iovec*& pieces, int& count, const Descriptors*& descriptors) {
    while (count > 0) {
        msghdr message = {};
        message.msg_iov = pieces;
        message.msg_iovlen = static_cast<size_t>(count);
        ControlMessage control;
        if (descriptors != nullptr) control.AddTo(message, *descriptors);
        const ssize_t n = sendmsg(mFd, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == ENOBUFS || errno == ENOMEM)) return OK;
        if (n < 0) {
            mBroken = true;
            mChanged.notify_all();
            shutdown(mFd, SHUT_RDWR);  // the reader reports the death, also if the peer has not gone
            return DEAD_OBJECT;
        }
        descriptors = nullptr;
        size_t sent = static_cast<size_t>(n);
        while (count > 0 && sent >= pieces->iov_len) {
            sent -= pieces->iov_len;
            ++pieces;
            --count;
        }
        if (count > 0) {
            pieces->iov_base = static_cast<uint8_t*>(pieces->iov_base) + sent;
            pieces->iov_len -= sent;
        }
    }
    return OK;
}

void Outbox::KeepLocked(const iovec* pieces, int count, Descriptors&& descriptors) {
    std::vector<uint8_t> frame;
    frame.reserve(TotalSize(pieces, count));
    for (int i = 0; i < count; ++i) {
        const uint8_t* data = static_cast<const uint8_t*>(pieces[i].iov_base);
        frame.insert(frame.end(), data, data + pieces[i].iov_len);
    }
    mWaitingBytes += frame.size();
    mWaiting.push_back({std::move(frame), std::move(descriptors)});
    if (mWaitingBytes > kMostWaiting) {
        ALOGE("closing the connection with a peer that does not read");
        mBroken = true;
        mChanged.notify_all();
        shutdown(mFd, SHUT_RDWR);
        return;
    }
    if (!mFlushing) StartFlusherLocked();
}

// If no thread can be started, the sender flushes, or the next sender if this one must not wait.
void Outbox::StartFlusherLocked() {
    mFlushing = StartThread("hidl-writer", false, [self = shared_from_this()] { self->Flush(); });
    mChanged.notify_all();
}

void Outbox::Flush() {
    std::unique_lock<std::mutex> lock(mMutex);
    while (FlushSomeLocked()) {
        pollfd writable = {mFd, POLLOUT, 0};
        lock.unlock();
        poll(&writable, 1, -1);
        lock.lock();
    }
    mFlushing = false;
    mChanged.notify_all();
}

// Returns whether something is left to send.
bool Outbox::FlushSomeLocked() {
    while (!mBroken && !mWaiting.empty()) {
        std::vector<uint8_t>& first = mWaiting.front().bytes;
        const Descriptors* unsent = mWaiting.front().descriptors.Size() > 0 ? &mWaiting.front().descriptors : nullptr;
        iovec rest = {first.data() + mSentOfFirst, first.size() - mSentOfFirst};
        iovec* pieces = &rest;
        int count = 1;
        SendNowLocked(pieces, count, unsent);
        if (unsent == nullptr) mWaiting.front().descriptors.Close();
        if (count > 0 && !mBroken) {
            mSentOfFirst = first.size() - rest.iov_len;
            return true;
        }
        mWaitingBytes -= first.size();
        mSentOfFirst = 0;
        mWaiting.pop_front();
        if (mWaitingBytes <= kRoomForCalls / 2) mStalled = false;
        mChanged.notify_all();
    }
    return false;
}

void Outbox::Shutdown() {
    std::lock_guard<std::mutex> lock(mMutex);
    mBroken = true;
    mChanged.notify_all();
    if (mFd >= 0) shutdown(mFd, SHUT_RDWR);
}

void Outbox::Close() {
    std::unique_lock<std::mutex> lock(mMutex);
    mBroken = true;
    mChanged.notify_all();
    shutdown(mFd, SHUT_RDWR);
    mChanged.wait(lock, [this] { return !mFlushing; });
    mWaiting.clear();
    mWaitingBytes = 0;
    close(mFd);
    mFd = -1;
}

}  // namespace android::hardware::host
