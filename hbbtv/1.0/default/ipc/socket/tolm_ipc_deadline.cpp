#include "ipc/socket/tolm_ipc_deadline.h"

#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>

namespace tolm {

using Clock = std::chrono::steady_clock;

Deadline::Deadline(std::chrono::milliseconds timeout) {
    if (timeout.count() > 0) mEnd = Clock::now() + timeout;
}

bool Deadline::HasPassed() const {
    return mEnd && Clock::now() >= *mEnd;
}

bool Deadline::Limit(int fd, int option) const {
    if (!mEnd) return true;
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(*mEnd - Clock::now()).count();
    // A time of 0 would be no limit.
    if (left <= 0) {
        errno = ETIMEDOUT;
        return false;
    }
    timeval time{};
    time.tv_sec = static_cast<time_t>(left / 1000000);
    time.tv_usec = static_cast<suseconds_t>(left % 1000000);
    return setsockopt(fd, SOL_SOCKET, option, &time, sizeof(time)) == 0;
}

bool Deadline::AllowsAnotherTry() const {
    return errno == EINTR || (mEnd && errno == EAGAIN);
}

bool DeadlineMutex::Lock(const Deadline& deadline) {
    std::unique_lock<std::mutex> lock(mMutex);
    const auto isFree = [this] { return !mLocked; };
    if (!deadline.mEnd) {
        mUnlocked.wait(lock, isFree);
    } else if (!mUnlocked.wait_until(lock, *deadline.mEnd, isFree)) {
        return false;
    }
    mLocked = true;
    return true;
}

void DeadlineMutex::unlock() {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mLocked = false;
    }
    mUnlocked.notify_one();
}

}  // namespace tolm
