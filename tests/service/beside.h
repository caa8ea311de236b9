// A call that begins while a service is in the middle of another one.
#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <utility>

namespace hbbtv::test {

class Beside {
  public:
    explicit Beside(std::function<void()> call) : mCall(std::move(call)) {}

    // Begins the call on a thread of its own and lets it come as far as it can: to its end, or to where it waits for
    // what the caller is doing.
    void Begin() {
        constexpr std::chrono::milliseconds kFarEnough{100};
        mDone = std::async(std::launch::async, mCall);
        mDone.wait_for(kFarEnough);
    }

    // Waits for its end. It must have begun.
    void End() { mDone.get(); }

  private:
    const std::function<void()> mCall;
    std::future<void> mDone;
};

}  // namespace hbbtv::test
