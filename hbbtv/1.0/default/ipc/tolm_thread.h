// A thread whose start may fail. std::thread reports that by an exception, but the device's build has no exceptions.
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

    // Starts a thread. Returns whether it was started. An earlier thread must have been joined or detached.
    bool Start(std::function<void()> body);

    // Detaches the thread, so that it need not be joined.
    void Detach();

    // Returns whether there is a thread to join.
    bool Joinable() const { return mJoinable; }

    // Waits until the thread, if any, ends.
    void Join();

  private:
    bool mJoinable = false;
    pthread_t mThread{};
};

}  // namespace tolm
