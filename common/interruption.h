// Waiting that Ctrl-C, SIGTERM, a deadline, a reader of the output that has gone, or another thread ends.
#pragma once

#include <optional>

#include "common/duration.h"

namespace hbbtv {

// Thrown out of a wait by Ctrl-C or SIGTERM, to where the command undoes what it has begun.
struct Interrupted {};

// To be made before any other thread: SIGINT and SIGTERM are blocked from then on and read here. One at a time.
class Interruption {
  public:
    enum class Cause { Signal, Deadline, Woken, NoReader };

    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    // From any thread: ends Wait(), now or later.
    void Wake();

    // Without a limit: for ever. NoReader: standard output is a pipe whose other end is closed.
    Cause Wait(std::optional<Milliseconds> limit);

  private:
    int mWake;
};

// Waits until the descriptor can be read; false when it cannot in time. While there is an Interruption, a signal ends
// the wait by Interrupted.
bool WaitUntilReadable(int fd, Milliseconds limit);

}  // namespace hbbtv
