// Runs the one-way calls of a passthrough wrapper in order, on one thread that is started for the first of them. Calls
// that are queued when the runner is destroyed are still run.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace android::hardware::details {

class TaskRunner {
  public:
    using Task = std::function<void()>;

    TaskRunner();
    ~TaskRunner();
    TaskRunner(const TaskRunner&) = delete;
    TaskRunner& operator=(const TaskRunner&) = delete;

    // Limits the number of waiting tasks.
    void start(size_t limit);

    // Queues a task. Returns false if too many are waiting, start() was not called, or no thread can be started.
    bool push(const Task& task);

  private:
    struct State;
    const std::shared_ptr<State> mState;  // shared with the thread, which may outlive the runner
};

}  // namespace android::hardware::details
