// What the demo prints: one line per call and per event, in the order in which they happened.
#pragma once

#include <chrono>
#include <mutex>
#include <string>

namespace hbbtv::demo {

class Transcript {
  public:
    using Clock = std::chrono::steady_clock;

    // A heading between steps.
    void Step(const std::string& title);

    // A call: what was asked, what came back, how long it took.
    void Call(const std::string& what, const std::string& answer, Clock::duration took);

    // An event. Any thread.
    void Event(const std::string& what, const std::string& values);

  private:
    void Line(const std::string& text);

    const Clock::time_point mStart = Clock::now();
    std::mutex mMutex;  // one line at a time
};

}  // namespace hbbtv::demo
