// A lock for calls of the platform, which may never return. Callers get their turns in order. Those who wait for a turn
// that lasts too long are refused, so that a silent family does not take all threads of the service.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>
#include <string>

#include "ipc/status/tolm_endpoint_status.h"

namespace tolm {

// Thread-safe.
class CallerQueue {
  public:
    using Clock = std::chrono::steady_clock;

    // While a turn has lasted longer than this, at most kMostWaiting callers wait.
    static constexpr std::chrono::milliseconds kPatience{5000};
    static constexpr size_t kMostWaiting = 15;

    // `name` is what the turns are for, in the log. A caller waits at most `longestWait`; 0: no limit.
    explicit CallerQueue(std::string name, std::chrono::milliseconds longestWait = {},
                         std::chrono::milliseconds patience = kPatience);

    // Waits for the turn and ends it when destroyed. False if the caller has been refused, or its process has died.
    class Turn {
      public:
        // Calls Waits() of `request` if it has to wait.
        explicit Turn(CallerQueue& queue, EndpointStatus::Request* request = nullptr)
            : mQueue(queue.Enter(request, mBegin) ? &queue : nullptr) {}
        ~Turn() {
            if (mQueue != nullptr) mQueue->Leave();
        }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

        explicit operator bool() const { return mQueue != nullptr; }

        Clock::time_point Begin() const { return mBegin; }

      private:
        Clock::time_point mBegin;
        CallerQueue* const mQueue;
    };

    // Returns the number of callers that wait.
    size_t Waiting() const;

  private:
    // On the stack of the thread that waits.
    struct Waiter {
        std::condition_variable wake;
        bool hasTurn = false;
    };

    // Sets the begin of the turn.
    bool Enter(EndpointStatus::Request* request, Clock::time_point& begin);
    void Leave();

    // mMutex is held.
    bool WaitLocked(std::unique_lock<std::mutex>& lock, Waiter& self);
    bool IsSurplusLocked(const Waiter& waiter) const;
    bool RefuseLocked(Clock::time_point now);

    const std::string mName;
    const std::chrono::milliseconds mLongestWait;
    const std::chrono::milliseconds mPatience;

    mutable std::mutex mMutex;  // guards all below; never held during a turn
    bool mTaken = false;
    Clock::time_point mSince;  // begin of the turn, if mTaken
    std::list<Waiter*> mWaiting;
    Clock::time_point mNextLine;
    size_t mRefused = 0;  // since the last line
};

}  // namespace tolm
