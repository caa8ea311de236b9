// The time at which an exchange with the platform is given up.
#pragma once

#include <chrono>
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

    // Returns false if the deadline passes first.
    bool Lock(std::unique_lock<std::timed_mutex>& lock) const;

  private:
    std::optional<std::chrono::steady_clock::time_point> mEnd;
};

}  // namespace tolm
