// The threads that run user code in this process: calls of other processes, death notifications, and the release of
// objects that other processes held. One pool per process, never destroyed: its threads keep running while the process
// exits.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace android::hardware::host {

class Task {
  public:
    virtual ~Task() = default;
    virtual void Run() = 0;
};

// Starts a detached thread. On failure, logs the reason and returns false. Unless it is `forUserCode`, the thread
// blocks all signals.
bool StartThread(const char* name, bool forUserCode, std::function<void()> body);

class ThreadPool {
  public:
    static ThreadPool& Get();

    // See configureRpcThreadpool() and joinRpcThreadpool().
    void Configure(size_t maxThreads, bool callerWillJoin);
    [[noreturn]] void Join();

    // Before it is called, tasks wait, or run on a thread that has joined.
    void Start();

    // Queues a task. Thread-safe; never blocks and never runs a task itself.
    void Post(std::unique_ptr<Task> task);

    // Runs a task on this thread, as one of the pool, and destroys it. Returns false, without running it, if as many
    // tasks are running as the pool has threads, or others wait.
    bool RunHere(std::unique_ptr<Task>& task);

    // Retries to start threads that could not be started. Called for every frame, because not every frame posts a task.
    void TryAgain() {
        if (mIsShort) AddThreads();
    }

    // Releases a reference on a pool thread, because the destructor may be user code.
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
        T mReference;  // released with the task
    };

    void AddThreads();
    [[noreturn]] void RunTasks();
    size_t MostRunningLocked() const { return (mStarted ? mMaxThreads : 0) + mJoined; }
    bool NeedsThreadLocked() const { return mTasks.size() > mIdle && mRunning + mIdle < MostRunningLocked(); }
    void RunUnlocked(std::unique_lock<std::mutex>& lock, std::unique_ptr<Task> task);

    std::atomic<bool> mIsShort{false};  // the last start of a thread failed

    std::mutex mMutex;
    std::condition_variable mWork;
    std::deque<std::unique_ptr<Task>> mTasks;
    size_t mIdle = 0;     // threads that wait for work, including joined ones
    size_t mRunning = 0;  // tasks, including those on threads of others
    size_t mJoined = 0;
    size_t mMaxThreads = 1;  // that the pool may start itself
    bool mConfigured = false;
    bool mStarted = false;
};

}  // namespace android::hardware::host
