// The one thread on which everything in the simulator happens: posted functions, timers, and the signals that end it.
// The networking library stays behind this header; only the socket files of the core look inside.
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

    // Runs until Stop. A function that throws is logged; the loop goes on.
    void Run();
    void Stop();

    // Runs the function after what is running now.
    void Post(std::function<void()> function);

    // Ends Run when one of the signals comes.
    void StopOnSignals(const std::vector<int>& signals);

    asio::io_context& Context() { return *mContext; }

  private:
    struct Signals;
    std::unique_ptr<asio::io_context> mContext;
    std::unique_ptr<Signals> mSignals;
};

// Calls a function once, later. A new start, Cancel and the end of the timer all make sure that the earlier function is
// not called any more, also when its time had already come.
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
