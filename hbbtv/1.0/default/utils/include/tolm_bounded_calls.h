// Calls of a client that have a time limit, for callers that must not wait forever for a client that does not return.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

class TolmBoundedCalls {
  public:
    explicit TolmBoundedCalls(std::chrono::milliseconds patience) : mPatience(patience) {}

    // Runs a call on its own thread and returns its result, or -1 if it does not return in time. Such a call continues,
    // so it must own what it uses. Until it returns, further calls of the same callee are not run and return -1, so
    // that a client never has two. Not thread-safe.
    int Run(const void* callee, std::function<int()> call);

  private:
    struct Call;

    const std::chrono::milliseconds mPatience;
    std::shared_ptr<Call> mLast;
};
