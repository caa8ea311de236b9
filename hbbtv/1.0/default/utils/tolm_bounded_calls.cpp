#include "utils/include/tolm_bounded_calls.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "ipc/tolm_log.h"
#include "ipc/tolm_thread.h"

namespace {

constexpr char kTag[] = "[hidl_base]";

// Clients that register again and again, and never return, are not given more threads than this.
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

    // Whether it has returned in time.
    bool Wait(std::chrono::milliseconds patience) {
        std::unique_lock<std::mutex> lock(mutex);
        return returned.wait_for(lock, patience, [this] { return done; });
    }
};

int TolmBoundedCalls::Run(const void* callee, std::function<int()> call) {
    if (mLast != nullptr && mLast->callee == callee && !mLast->Wait(std::chrono::milliseconds(0))) return -1;
    const auto made = std::make_shared<Call>();
    made->callee = callee;
    tolm::TolmThread thread;
    const bool room = ++gThreads <= kMostThreads;
    if (!room || !thread.Start([made, call = std::move(call)] {
            made->Finish(call());
            --gThreads;
        })) {
        --gThreads;
        TOLM_LOG(ANDROID_LOG_ERROR, kTag, "no thread for a call of the client");
        return -1;
    }
    thread.Detach();
    mLast = made;
    if (!made->Wait(mPatience)) TOLM_LOG(ANDROID_LOG_WARN, kTag, "the client does not return");
    std::lock_guard<std::mutex> lock(made->mutex);
    return made->result;
}
