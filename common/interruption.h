// Waits that end on Ctrl-C, SIGTERM, a deadline, a call of another thread, or when the reader of the output has gone.
#pragma once

#include <initializer_list>
#include <optional>

#include "common/duration.h"

namespace hbbtv {

// Thrown by a wait on Ctrl-C or SIGTERM, so that the command can undo what it has begun.
struct Interrupted {};

// Blocks SIGINT and SIGTERM and reads them instead, so it must be created before any other thread. At most one may
// exist.
class Interruption {
  public:
    enum class Cause { Signal, Deadline, Woken, NoReader };

    // `more`: further signals that are taken like these two.
    explicit Interruption(std::initializer_list<int> more = {});
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    // Ends the current or the next Wait(). Thread-safe.
    void Wake();

    // Waits forever without a limit. NoReader: standard output is a pipe whose reader has closed its end.
    Cause Wait(std::optional<Milliseconds> limit);

  private:
    int mWake;
};

// Waits until the descriptor is readable. Returns false at the limit. Throws Interrupted on a signal if an Interruption
// exists.
bool WaitUntilReadable(int fd, Milliseconds limit);

}  // namespace hbbtv
