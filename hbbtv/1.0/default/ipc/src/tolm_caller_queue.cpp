#include "ipc/src/tolm_caller_queue.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include "ipc/src/tolm_calling_process.h"
#include "ipc/tolm_log.h"

namespace tolm {

namespace {

// A thread is free this long after its caller has died.
constexpr std::chrono::milliseconds kCheckInterval{250};

constexpr std::chrono::seconds kLineInterval{1};

}  // namespace

CallerQueue::CallerQueue(std::string name, std::chrono::milliseconds longestWait, std::chrono::milliseconds patience)
    : mName(std::move(name)), mLongestWait(longestWait), mPatience(patience) {}

size_t CallerQueue::Waiting() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mWaiting.size();
}

bool CallerQueue::Enter(EndpointStatus::Request* request, Clock::time_point& begin) {
    std::unique_lock<std::mutex> lock(mMutex);
    const Clock::time_point now = Clock::now();
    if (!mTaken) {
        mTaken = true;
        mSince = begin = now;
        return true;
    }
    if (now >= mSince + mPatience && mWaiting.size() >= kMostWaiting) return RefuseLocked(now);
    Waiter self;
    mWaiting.push_back(&self);
    if (request != nullptr) request->Waits();
    if (WaitLocked(lock, self)) {
        begin = mSince;
        return true;
    }
    mWaiting.remove(&self);
    return false;
}

bool CallerQueue::WaitLocked(std::unique_lock<std::mutex>& lock, Waiter& self) {
    const pid_t pid = CallingPid();
    std::shared_ptr<const CallingProcess> caller;  // few wait so long that they need it
    Clock::time_point now = Clock::now();
    const Clock::time_point end = mLongestWait.count() > 0 ? now + mLongestWait : Clock::time_point::max();
    Clock::time_point check = pid > 0 ? now + kCheckInterval : Clock::time_point::max();
    for (;;) {
        Clock::time_point next = std::min({end, check, now + kLineInterval});
        if (now < mSince + mPatience) next = std::min(next, mSince + mPatience);
        self.wake.wait_until(lock, next);
        if (self.hasTurn) return true;
        now = Clock::now();
        if (now >= end) return RefuseLocked(now);
        if (now >= mSince + mPatience && IsSurplusLocked(self)) return RefuseLocked(now);
        if (now < check) continue;
        if (caller == nullptr) caller = CallingProcess::Of(pid);
        if (caller->HasDied()) return false;
        check = now + kCheckInterval;
    }
}

bool CallerQueue::IsSurplusLocked(const Waiter& waiter) const {
    const auto place = std::find(mWaiting.begin(), mWaiting.end(), &waiter);
    return std::distance(mWaiting.begin(), place) >= static_cast<std::ptrdiff_t>(kMostWaiting);
}

// Returns false. Many callers may be refused in a short time, so not each gets a line.
bool CallerQueue::RefuseLocked(Clock::time_point now) {
    ++mRefused;
    if (now < mNextLine) return false;
    const auto lasted = std::chrono::duration_cast<std::chrono::milliseconds>(now - mSince);
    TOLM_LOG(ANDROID_LOG_WARN, kIpcBaseTag,
             "SendIpc failed 0 1 1: no turn for %s, the open one has lasted %lld ms, %zu wait, %zu refused",
             mName.c_str(), static_cast<long long>(lasted.count()), mWaiting.size(), mRefused);
    mRefused = 0;
    mNextLine = now + kLineInterval;
    return false;
}

void CallerQueue::Leave() {
    std::lock_guard<std::mutex> lock(mMutex);
    mTaken = !mWaiting.empty();
    if (!mTaken) return;
    Waiter* const next = mWaiting.front();
    mWaiting.pop_front();
    mSince = Clock::now();
    next->hasTurn = true;
    next->wake.notify_one();  // with mMutex, since the waiter is gone as soon as it has seen its turn
}

}  // namespace tolm
