#include <hidl/TaskRunner.h>

#include <condition_variable>
#include <deque>
#include <mutex>

#include "connection/thread_pool.h"

namespace android::hardware::details {

struct TaskRunner::State {
    std::mutex mutex;
    std::condition_variable work;
    std::deque<Task> tasks;
    size_t limit = 0;
    bool running = false;   // there is a thread
    bool finished = false;  // the runner is destroyed: the thread ends when no task is left

    void Run() {
        for (;;) {
            Task task;
            {
                std::unique_lock<std::mutex> lock(mutex);
                work.wait(lock, [this] { return finished || !tasks.empty(); });
                if (tasks.empty()) return;
                task = std::move(tasks.front());
                tasks.pop_front();
            }
            task();
        }
    }
};

TaskRunner::TaskRunner() : mState(std::make_shared<State>()) {}

TaskRunner::~TaskRunner() {
    std::lock_guard<std::mutex> lock(mState->mutex);
    mState->finished = true;
    mState->work.notify_one();
}

void TaskRunner::start(size_t limit) {
    std::lock_guard<std::mutex> lock(mState->mutex);
    mState->limit = limit;
}

bool TaskRunner::push(const Task& task) {
    std::lock_guard<std::mutex> lock(mState->mutex);
    if (mState->tasks.size() >= mState->limit) return false;
    if (!mState->running) {
        mState->running = host::StartThread("hidl-oneway", true, [state = mState] { state->Run(); });
        if (!mState->running) return false;
    }
    mState->tasks.push_back(task);
    mState->work.notify_one();
    return true;
}

}  // namespace android::hardware::details
