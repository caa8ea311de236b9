#include "platform/worker.h"

#include <thread>
#include <utility>

namespace hbbtv::browser {

Worker::Worker() {
    std::thread([this] { Run(); }).detach();
}

void Worker::Post(std::function<void()> function) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mFunctions.push_back(std::move(function));
    mChanged.notify_all();
}

void Worker::Flush(std::chrono::steady_clock::time_point end) {
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait_until(lock, end, [this] { return mFunctions.empty() && !mBusy; });
}

void Worker::Run() {
    std::unique_lock<std::mutex> lock(mMutex);
    while (true) {
        mChanged.wait(lock, [this] { return !mFunctions.empty(); });
        const std::function<void()> function = std::move(mFunctions.front());
        mFunctions.pop_front();
        mBusy = true;
        lock.unlock();
        function();
        lock.lock();
        mBusy = false;
        mChanged.notify_all();
    }
}

}  // namespace hbbtv::browser
