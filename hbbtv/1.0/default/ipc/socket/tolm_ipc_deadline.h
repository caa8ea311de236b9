// The time at which an exchange with the platform is given up.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

namespace tolm {

class Deadline {
  public:
    // Never passes.
    Deadline() = default;

    // Passes after `timeout`; 0: never.
    explicit Deadline(std::chrono::milliseconds timeout);

    bool HasPassed() const;

    // Lets the next call on a socket fail with EAGAIN when the deadline passes. `option` is SO_RCVTIMEO or SO_SNDTIMEO.
    // Returns false with ETIMEDOUT if it has passed already.
    bool Limit(int fd, int option) const;

    // Returns whether a call that has failed with the current errno is to be repeated after Limit(): a signal came, or
    // the limit passed before the deadline, since the kernel counts in larger steps.
    bool AllowsAnotherTry() const;

  private:
    friend class DeadlineMutex;

    std::optional<std::chrono::steady_clock::time_point> mEnd;
};

// A mutex for which a thread waits until a deadline at most. Instead of std::timed_mutex, whose wait on a steady clock
// the thread sanitizer does not know.
class DeadlineMutex {
  public:
    // Returns false if the deadline has passed first.
    bool Lock(const Deadline& deadline);

    // For std::unique_lock.
    void unlock();

  private:
    std::mutex mMutex;
    std::condition_variable mUnlocked;
    bool mLocked = false;  // guarded by mMutex
};

}  // namespace tolm
