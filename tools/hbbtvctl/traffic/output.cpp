#include "traffic/output.h"

#include <chrono>
#include <cstdio>
#include <thread>
#include <utility>

namespace hbbtv::ctl {

namespace {

constexpr size_t kMostBytes = 16u << 20;
constexpr std::chrono::seconds kPatience{1};

}  // namespace

Output::Output() {
    std::thread(Write, mShared).detach();
}

Output::~Output() {
    std::unique_lock<std::mutex> lock(mShared->mutex);
    mShared->changed.wait_for(lock, kPatience, [this] { return mShared->waiting.empty() && !mShared->writing; });
}

void Output::Print(const std::string& line) {
    std::lock_guard<std::mutex> lock(mShared->mutex);
    if (mShared->waiting.size() > kMostBytes) {
        ++mShared->lost;
        return;
    }
    mShared->waiting += line + "\n";
    mShared->changed.notify_all();
}

uint64_t Output::Lost() const {
    std::lock_guard<std::mutex> lock(mShared->mutex);
    return mShared->lost;
}

void Output::Write(const std::shared_ptr<Shared>& shared) {
    std::unique_lock<std::mutex> lock(shared->mutex);
    while (true) {
        shared->changed.wait(lock, [&shared] { return !shared->waiting.empty(); });
        const std::string text = std::exchange(shared->waiting, "");
        shared->writing = true;
        lock.unlock();
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
        lock.lock();
        shared->writing = false;
        shared->changed.notify_all();
    }
}

}  // namespace hbbtv::ctl
