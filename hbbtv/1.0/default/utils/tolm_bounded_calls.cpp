#include "utils/include/tolm_bounded_calls.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "ipc/status/tolm_endpoint_status.h"
#include "ipc/tolm_log.h"
#include "ipc/tolm_thread.h"
#include "utils/include/tolm_service_tags.h"

namespace {

// The limit for clients that register repeatedly and never return.
constexpr int kMostThreads = 16;
std::atomic<int> gThreads{0};

}  // namespace

struct TolmBoundedCalls::Call {
    const void* callee;
    std::mutex mutex;
    std::condition_variable returned;
    bool done = false;  // guarded by mutex
    int result = -1;    // guarded by mutex

    void Finish(int theResult) {
        std::lock_guard<std::mutex> lock(mutex);
        result = theResult;
        done = true;
        returned.notify_all();
    }

    // Returns whether the call has returned in time.
    bool Wait(std::chrono::milliseconds patience) {
        std::unique_lock<std::mutex> lock(mutex);
        return returned.wait_for(lock, patience, [this] { return done; });
    }
};

int TolmBoundedCalls::Run(const void* callee, std::function<int()> call) {
    if (mLast != nullptr && mLast->callee == callee && !mLast->Wait(std::chrono::milliseconds(0))) return -1;
    const auto current = std::make_shared<Call>();
    current->callee = callee;
    tolm::TolmThread thread;
    const bool room = ++gThreads <= kMostThreads;
    const auto event = tolm::EndpointStatus::Event::OfThisThread();
    if (!room || !thread.Start([current, event, call = std::move(call)] {
            tolm::EndpointStatus::Event::WorkFor(event);
            current->Finish(call());
            --gThreads;
        })) {
        --gThreads;
        TOLM_LOG(ANDROID_LOG_ERROR, tolm::kHidlBaseTag, "no thread for a call of the client");
        return -1;
    }
    thread.Detach();
    mLast = current;
    if (!current->Wait(mPatience)) TOLM_LOG(ANDROID_LOG_WARN, tolm::kHidlBaseTag, "the client does not return");
    std::lock_guard<std::mutex> lock(current->mutex);
    return current->result;
}
