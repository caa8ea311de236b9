#include "ipc/src/tolm_watcher.h"

#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "ipc/src/tolm_family.h"
#include "ipc/status/tolm_endpoint_status.h"
#include "ipc/tolm_log.h"
#include "ipc/tolm_thread.h"

namespace tolm {

namespace {

using Clock = EndpointStatus::Clock;
using State = EndpointStatus::State;

constexpr std::chrono::seconds kLong{1};
constexpr std::chrono::milliseconds kInterval{100};
constexpr int kIdleIntervals = 20;  // before it sleeps: waking it costs the request more

std::string Processes(const std::vector<pid_t>& processes) {
    std::string text;
    for (const pid_t process : processes) text += (text.empty() ? "" : ", ") + std::to_string(process);
    return text;
}

long long Milliseconds(Clock::duration duration) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
}

void LogRequest(const Family& family, const EndpointStatus::Open& open, const char* state,
                const std::vector<pid_t>& waiting, pid_t platform, Clock::time_point now) {
    const std::string callers =
        waiting.empty() ? "no callers wait" : "callers of processes " + Processes(waiting) + " wait";
    TOLM_LOG(ANDROID_LOG_WARN, kIpcBaseTag,
             "request %d (%s.%s) of process %d has been %s for %lld ms, the platform is process %d, %s",
             open.operation.code, family.interface, open.operation.name, open.caller, state,
             Milliseconds(now - open.since), platform, callers.c_str());
}

void LogEvent(const Family& family, const State& state, Clock::time_point now) {
    TOLM_LOG(ANDROID_LOG_WARN, kIpcBaseTag,
             "the client of %s, process %s, has not returned from an event for %lld ms, further events wait",
             family.interface, state.clients.empty() ? "unknown" : Processes(state.clients).c_str(),
             Milliseconds(now - state.open->since));
}

// Returns whether something is open.
bool Look() {
    const Clock::time_point now = Clock::now();
    bool open = false;
    for (const Family* family : families::kAll) {
        EndpointStatus& requests = EndpointStatus::Of(family->requests);
        if (const auto overdue = requests.TakeOverdue(&State::open, now - kLong)) {
            LogRequest(*family, *overdue->open, "open", overdue->waiting, overdue->peer, now);
        }
        if (const auto overdue = requests.TakeOverdue(&State::sending, now - kLong)) {
            LogRequest(*family, *overdue->sending, "in the middle of being sent", overdue->waitingToSend, overdue->peer,
                       now);
        }
        open = open || requests.IsOpen();
        if (!family->events) continue;
        EndpointStatus& events = EndpointStatus::Of(*family->events);
        if (const auto overdue = events.TakeOverdue(&State::open, now - kLong)) LogEvent(*family, *overdue, now);
        open = open || events.IsOpen();
    }
    return open;
}

// Never destroyed, as its thread.
class Thread {
  public:
    static Thread& Get() {
        static Thread* const thread = new Thread;
        return *thread;
    }

    bool Sleeps() const { return mAsleep; }

    void Wake() {
        if (!mAsleep.load()) return;
        std::lock_guard<std::mutex> lock(mMutex);
        if (!mStarted) {
            TolmThread thread;
            mStarted = thread.Start([this] { Run(); });
            thread.Detach();
            if (!mStarted) return;  // the next one tries again
        }
        mAsleep = false;
        mWake.notify_one();
    }

  private:
    void Run() {
        int idle = 0;
        for (;;) {
            idle = Look() ? 0 : idle + 1;
            std::unique_lock<std::mutex> lock(mMutex);
            if (idle < kIdleIntervals) {
                mWake.wait_for(lock, kInterval);
                continue;
            }
            // What is opened from now on wakes it; what was opened before is seen here.
            mAsleep = true;
            lock.unlock();
            idle = 0;
            if (Look()) {
                mAsleep = false;
                continue;
            }
            lock.lock();
            mWake.wait(lock, [this] { return !mAsleep; });
        }
    }

    std::atomic<bool> mAsleep{true};  // or not started
    std::mutex mMutex;
    std::condition_variable mWake;
    bool mStarted = false;  // guarded by mMutex
};

}  // namespace

void Watcher::Wake() {
    Thread::Get().Wake();
}

bool Watcher::Sleeps() {
    return Thread::Get().Sleeps();
}

}  // namespace tolm
