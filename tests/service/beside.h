// A call that starts while a service is executing another one.
#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <utility>

namespace hbbtv::test {

class Beside {
  public:
    explicit Beside(std::function<void()> call) : mCall(std::move(call)) {}

    // Starts the call on its own thread and lets it run as far as possible: to its end, or to where it waits for the
    // caller.
    void Begin() {
        constexpr std::chrono::milliseconds kFarEnough{100};
        mDone = std::async(std::launch::async, mCall);
        mDone.wait_for(kFarEnough);
    }

    // Waits until the call returns. Begin() must have been called.
    void End() { mDone.get(); }

  private:
    const std::function<void()> mCall;
    std::future<void> mDone;
};

}  // namespace hbbtv::test
