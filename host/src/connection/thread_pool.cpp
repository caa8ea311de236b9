#include "connection/thread_pool.h"

#include <hidl/HidlTransportSupport.h>
#include <hwbinder/ProcessState.h>
#include <pthread.h>
#include <signal.h>

#include <system_error>
#include <thread>

#include "log/host_log.h"

namespace android::hardware {
namespace host {

bool StartThread(const char* name, bool forUserCode, std::function<void()> body) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    if (!forUserCode) pthread_sigmask(SIG_SETMASK, &all, &before);
    bool started = true;
    try {
        std::thread thread([name, body = std::move(body)] {
            pthread_setname_np(pthread_self(), name);
            body();
        });
        thread.detach();
    } catch (const std::system_error& error) {
        ALOGE("cannot start thread %s: %s", name, error.what());
        started = false;
    }
    if (!forUserCode) pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

ThreadPool& ThreadPool::Get() {
    static ThreadPool* const pool = new ThreadPool;
    return *pool;
}

void ThreadPool::Configure(size_t maxThreads, bool callerWillJoin) {
    LOG_ALWAYS_FATAL_IF(maxThreads == 0 && callerWillJoin,
                        "configureRpcThreadpool(0, true): a pool that the caller joins needs at least one thread");
    std::lock_guard<std::mutex> lock(mMutex);
    mMaxThreads = callerWillJoin ? maxThreads - 1 : maxThreads;
    mConfigured = true;
}

void ThreadPool::Start() {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mStarted) return;
        mStarted = true;
    }
    AddThreads();
}

void ThreadPool::Post(std::unique_ptr<Task> task) {
    bool needsThread;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mTasks.push_back(std::move(task));
        needsThread = NeedsThreadLocked();
    }
    // The lock is released, so the thread that wakes up does not have to wait for it.
    mWork.notify_one();
    if (needsThread) AddThreads();
}

// Starts as many threads as there are tasks without an idle thread. If no thread can be started, the tasks wait for the
// existing threads, and the next frame triggers another attempt.
void ThreadPool::AddThreads() {
    for (;;) {
        {
            std::lock_guard<std::mutex> lock(mMutex);
            if (!NeedsThreadLocked()) return;
            // It counts as idle until it takes a task, so that no task is counted twice.
            ++mIdle;
        }
        mIsShort = !StartThread("hidl-pool", true, [this] { RunTasks(); });
        if (!mIsShort) continue;
        std::lock_guard<std::mutex> lock(mMutex);
        --mIdle;
        return;
    }
}

bool ThreadPool::RunHere(std::unique_ptr<Task>& task) {
    bool needsThread;
    {
        std::unique_lock<std::mutex> lock(mMutex);
        if (!mTasks.empty() || mRunning >= MostRunningLocked()) return false;
        RunUnlocked(lock, std::move(task));
        if (mTasks.empty()) return true;
        needsThread = NeedsThreadLocked();
    }
    mWork.notify_one();
    if (needsThread) AddThreads();
    return true;
}

void ThreadPool::Join() {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        LOG_ALWAYS_FATAL_IF(!mConfigured, "joinRpcThreadpool() without configureRpcThreadpool()");
        ++mIdle;
        ++mJoined;
    }
    RunTasks();
}

// The caller has counted this thread as idle.
void ThreadPool::RunTasks() {
    std::unique_lock<std::mutex> lock(mMutex);
    for (;;) {
        mWork.wait(lock, [this] { return !mTasks.empty() && mRunning < MostRunningLocked(); });
        std::unique_ptr<Task> task = std::move(mTasks.front());
        mTasks.pop_front();
        --mIdle;
        RunUnlocked(lock, std::move(task));
        ++mIdle;
    }
}

void ThreadPool::RunUnlocked(std::unique_lock<std::mutex>& lock, std::unique_ptr<Task> task) {
    ++mRunning;
    lock.unlock();
    task->Run();
    task.reset();
    lock.lock();
    --mRunning;
}

}  // namespace host

ProcessState* ProcessState::self() {
    static ProcessState* const state = new ProcessState;
    return state;
}

void ProcessState::startThreadPool() {
    host::ThreadPool::Get().Start();
}

void configureRpcThreadpool(size_t maxThreads, bool callerWillJoin) {
    host::ThreadPool::Get().Configure(maxThreads, callerWillJoin);
}

void joinRpcThreadpool() {
    host::ThreadPool::Get().Join();
}

}  // namespace android::hardware
