// What the demo prints: one line per call and per event, in the order in which they happened.
#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace hbbtv::demo {

class Transcript {
  public:
    using Clock = std::chrono::steady_clock;

    // A heading between steps.
    void Step(const std::string& title);

    // Lines of their own, without a time.
    void Text(const std::string& lines);

    // A call that is about to be made. Events that come before its answer are shown behind it.
    void Ask(const std::string& what);

    // What came back, and how long it took.
    void Answer(const std::string& answer);

    // An event. Any thread.
    void Event(const std::string& what, const std::string& values);

  private:
    void LineLocked(Clock::time_point when, const std::string& text);

    const Clock::time_point mStart = Clock::now();
    std::mutex mMutex;
    std::string mAsked;                                                // guarded by mMutex; empty between calls
    Clock::time_point mAskedAt;                                        // guarded by mMutex
    std::vector<std::pair<Clock::time_point, std::string>> mDeferred;  // guarded by mMutex
};

}  // namespace hbbtv::demo
