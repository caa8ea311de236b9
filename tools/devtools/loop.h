// The thread that talks to Chromium: runs posted functions and timers. The networking library is hidden behind this
// header; only the files of this folder use it.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <vector>

#include "common/duration.h"

namespace asio {
class io_context;
}

namespace hbbtv::devtools {

class Loop {
  public:
    Loop();
    ~Loop();
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    // Runs the function after the current one. Thread-safe.
    void Post(std::function<void()> function);

    // Runs the function once, after at least this time.
    void After(Milliseconds delay, std::function<void()> function);

    // Calls the function on each of the signals, which then do not end the process.
    void OnSignals(std::initializer_list<int> signals, std::function<void()> function);

    // Runs functions until `done` returns true, which is asked after each of them. Returns false at the limit. May be
    // called by a function that the loop runs.
    bool RunUntil(const std::function<bool()>& done, Milliseconds limit);

    // Runs functions until `done` returns true.
    void RunUntil(const std::function<bool()>& done);

    asio::io_context& Context() { return *mContext; }

  private:
    struct Signals;
    static void Wait(Signals& signals);

    const std::unique_ptr<asio::io_context> mContext;
    std::vector<std::unique_ptr<Signals>> mSignals;
};

}  // namespace hbbtv::devtools
