// Calls of a client that somebody else waits for: a client that does not return must not keep him waiting for ever.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

class TolmBoundedCalls {
  public:
    explicit TolmBoundedCalls(std::chrono::milliseconds patience) : mPatience(patience) {}

    // Makes a call on a thread of its own and gives its result, or -1 when it does not return in time. Then it may run
    // on, so it owns what it touches; until it has returned, further calls of the same callee are not made and give -1,
    // so that a client never has two. One call at a time.
    int Run(const void* callee, std::function<int()> call);

  private:
    struct Call;

    const std::chrono::milliseconds mPatience;
    std::shared_ptr<Call> mLast;
};
