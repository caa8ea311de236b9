// The simulator's only thread: runs posted functions, timers, and the signals that end it. The networking library is
// hidden behind this header; only the files of server/ use it.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace asio {
class io_context;
}

namespace hbbtv::sim {

class EventLoop {
  public:
    EventLoop();
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    // Runs until Stop. A function that throws is logged, and the loop continues.
    void Run();
    void Stop();

    // Runs what need not wait, and returns. Not to be mixed with Run().
    void RunReady();

    // Runs the function after the current one.
    void Post(std::function<void()> function);

    // Ends Run when one of the signals arrives.
    void StopOnSignals(const std::vector<int>& signals);

    asio::io_context& Context() { return *mContext; }

  private:
    struct Signals;
    std::unique_ptr<asio::io_context> mContext;
    std::unique_ptr<Signals> mSignals;
};

// Calls a function once, later. After a new start, Cancel or destruction the earlier function is not called, even if
// its time has already come.
class Timer {
  public:
    explicit Timer(EventLoop& loop);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void Start(std::chrono::milliseconds delay, std::function<void()> function);
    void Cancel();
    bool Running() const;

  private:
    struct State;
    std::shared_ptr<State> mState;
};

}  // namespace hbbtv::sim
