// What the callbacks leave to the main thread. A callback returns at once: the platform waits for it, and what it did
// not return to cannot call it again.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

class Tasks {
  public:
    using Task = std::function<void()>;

    // May be called by any thread.
    void Add(Task task) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mTasks.push_back(std::move(task));
        mAdded.notify_one();
    }

    // Runs the oldest task; waits for one until the deadline. Returns false if there was none.
    bool RunOne(std::chrono::steady_clock::time_point deadline) {
        std::unique_lock<std::mutex> lock(mMutex);
        if (!mAdded.wait_until(lock, deadline, [this] { return !mTasks.empty(); })) return false;
        const Task task = std::move(mTasks.front());
        mTasks.pop_front();
        lock.unlock();
        task();
        return true;
    }

  private:
    std::mutex mMutex;
    std::condition_variable mAdded;
    std::deque<Task> mTasks;  // guarded by mMutex
};
