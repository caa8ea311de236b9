#include "traffic/output.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
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

int Output::Error() const {
    std::lock_guard<std::mutex> lock(mShared->mutex);
    return mShared->error;
}

// Not by the stream, whose lock the end of the program needs.
int Output::WriteAll(const std::string& text) {
    for (size_t written = 0; written < text.size();) {
        const ssize_t count = write(STDOUT_FILENO, text.data() + written, text.size() - written);
        if (count >= 0) {
            written += static_cast<size_t>(count);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

void Output::Write(const std::shared_ptr<Shared>& shared) {
    std::unique_lock<std::mutex> lock(shared->mutex);
    while (true) {
        shared->changed.wait(lock, [&shared] { return !shared->waiting.empty(); });
        const std::string text = std::exchange(shared->waiting, "");
        shared->writing = true;
        lock.unlock();
        const int error = WriteAll(text);
        lock.lock();
        if (error != 0) shared->error = error;
        shared->writing = false;
        shared->changed.notify_all();
    }
}

}  // namespace hbbtv::ctl
