// A thread that has to be joined and whose start may fail. std::thread says so by an exception, which the device's
// build does not have.
#pragma once

#include <pthread.h>

#include <functional>

namespace tolm {

class TolmThread {
  public:
    TolmThread() = default;
    TolmThread(TolmThread&& other) noexcept;
    TolmThread& operator=(TolmThread&& other) noexcept;
    ~TolmThread();

    // Whether the thread runs. Not while an earlier one is still to be joined.
    bool Start(std::function<void()> body);

    // Lets the thread run on by itself: nobody joins it.
    void Detach();

    // Whether there is a thread to be joined.
    bool Joinable() const { return mJoinable; }

    // Waits for the thread's end; nothing to do when there is none.
    void Join();

  private:
    bool mJoinable = false;
    pthread_t mThread{};
};

}  // namespace tolm
