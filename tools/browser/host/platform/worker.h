// A thread that runs functions in order.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace hbbtv::browser {

// Must exist until the process ends, because a function may hang. Thread-safe.
class Worker {
  public:
    Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void Post(std::function<void()> function);

    // Waits until all functions have run, at most until this time.
    void Flush(std::chrono::steady_clock::time_point end);

  private:
    void Run();

    std::mutex mMutex;
    std::condition_variable mChanged;
    std::deque<std::function<void()>> mFunctions;  // guarded by mMutex
    bool mBusy = false;                            // guarded by mMutex
};

}  // namespace hbbtv::browser
