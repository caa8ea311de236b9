// The threads that run user code in this process: calls from other processes, death notices, and the release of objects
// that other processes held. One pool per process, never destroyed: its threads run on while the process exits.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace android {
namespace hardware {
namespace host {

class Task {
  public:
    virtual ~Task() = default;
    virtual void Run() = 0;
};

// Starts a detached thread; false, with a log line, when the system has none left. A thread that does not run user code
// takes no signals (`forUserCode` false).
bool StartThread(const char* name, bool forUserCode, std::function<void()> body);

class ThreadPool {
  public:
    static ThreadPool& Get();

    // As configureRpcThreadpool() and joinRpcThreadpool() say.
    void Configure(size_t maxThreads, bool callerWillJoin);
    [[noreturn]] void Join();

    // Before this, tasks wait (or are run by a thread that has joined).
    void Start();

    // Any thread; never blocks and runs nothing itself.
    void Post(std::unique_ptr<Task> task);

    // Tries again to start the threads that the system did not give. Called with every frame that arrives, because what
    // arrives does not always come with a task of its own.
    void TryAgain() {
        if (mIsShort) AddThreads();
    }

    // Lets go of something in a pool thread, because its destructor may be user code.
    template <typename T>
    void ReleaseLater(T&& reference) {
        Post(std::make_unique<ReleaseTask<std::decay_t<T>>>(std::forward<T>(reference)));
    }

  private:
    template <typename T>
    class ReleaseTask : public Task {
      public:
        explicit ReleaseTask(T&& reference) : mReference(std::move(reference)) {}
        void Run() override {}

      private:
        T mReference;  // goes with the task
    };

    void AddThreads();
    [[noreturn]] void RunTasks();

    std::atomic<bool> mIsShort{false};  // the last start of a thread failed

    std::mutex mMutex;
    std::condition_variable mWork;
    std::deque<std::unique_ptr<Task>> mTasks;
    size_t mIdle = 0;     // threads that wait for work, joined ones included
    size_t mThreads = 0;  // started by the pool itself
    size_t mMaxThreads = 1;
    bool mConfigured = false;
    bool mStarted = false;
};

}  // namespace host
}  // namespace hardware
}  // namespace android
