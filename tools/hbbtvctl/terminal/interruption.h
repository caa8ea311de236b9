// Waiting for Ctrl-C, a deadline, or another thread.
#pragma once

#include <chrono>
#include <optional>

namespace hbbtv::ctl {

// To be made before any other thread: SIGINT and SIGTERM are blocked from then on and read here.
class Interruption {
  public:
    enum class Cause { Signal, Deadline, Woken };

    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    // From any thread: ends Wait(), now or later.
    void Wake();

    // Without a limit: for ever.
    Cause Wait(std::optional<std::chrono::milliseconds> limit);

  private:
    int mSignals;
    int mWake;
};

}  // namespace hbbtv::ctl
