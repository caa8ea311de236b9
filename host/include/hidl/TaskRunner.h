// The one-way calls of a passthrough wrapper: carried out in order by one thread, which is started with the first of
// them. What is queued when the runner goes is still carried out.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace android {
namespace hardware {
namespace details {

class TaskRunner {
  public:
    using Task = std::function<void()>;

    TaskRunner();
    ~TaskRunner();
    TaskRunner(const TaskRunner&) = delete;
    TaskRunner& operator=(const TaskRunner&) = delete;

    // At most `limit` tasks wait at a time.
    void start(size_t limit);

    // False when too many wait, start() was not called, or no thread can be started.
    bool push(const Task& task);

  private:
    struct State;
    const std::shared_ptr<State> mState;  // shared with the thread, which may outlive the runner
};

}  // namespace details
}  // namespace hardware
}  // namespace android
