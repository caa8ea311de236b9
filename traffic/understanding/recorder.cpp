#include "traffic/understanding/recorder.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <exception>

namespace hbbtv::traffic {

namespace {

constexpr size_t kMostBytes = 64u << 20;
constexpr size_t kBytesOfStep = 200;  // about what a step takes besides its bytes

// What arrives in this time is understood together. To be woken for each message would cost as much as to pass it on.
constexpr std::chrono::milliseconds kPause{4};

// The messages come first where there are few processors.
constexpr int kLessUrgent = 10;

}  // namespace

Recorder::Recorder(std::function<void(const Record&)> onRecord)
    : mUnderstanding(std::move(onRecord)), mThread([this] { Run(); }) {}

void Recorder::Finish() {
    if (!mThread.joinable()) return;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mStop = true;
    }
    mChanged.notify_one();
    mThread.join();
}

void Recorder::Push(Step step, size_t bytes) {
    bool wake = false;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mSteps.push_back(std::move(step));
        mBytes += bytes + kBytesOfStep;
        wake = mIdle;
        mIdle = false;
    }
    if (wake) mChanged.notify_one();
}

bool Recorder::Full() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mBytes > kMostBytes;
}

void Recorder::Connected(const RelayedConnection& connection) {
    Push([connection, time = TimeStamp()](Understanding& to) { to.Connected(connection, time); });
}

void Recorder::Closed(uint64_t connection, const std::string& how) {
    for (const Direction direction : {Direction::kToServer, Direction::kToCaller}) {
        const auto lost = mLost.find({connection, direction});
        if (lost == mLost.end()) continue;
        Push([=, count = lost->second, time = TimeStamp()](Understanding& to) {
            to.Lost(connection, direction, count, time);
        });
        mLost.erase(lost);
    }
    Push([=, time = TimeStamp()](Understanding& to) { to.Closed(connection, how, time); });
}

void Recorder::Note(const std::string& note, const std::string& socket) {
    Push([=, time = TimeStamp()](Understanding& to) { to.Note(note, socket, time); });
}

void Recorder::Bytes(uint64_t connection, Direction direction, std::string bytes, size_t begin, const TimeStamp& time,
                     const std::string& rule) {
    const auto lost = mLost.find({connection, direction});
    if (lost != mLost.end() || Full()) {
        if (lost == mLost.end() || begin == std::string::npos || Full()) {
            mLost[{connection, direction}] += bytes.size();
            return;
        }
        Push([=, count = lost->second + begin](Understanding& to) { to.Lost(connection, direction, count, time); });
        mLost.erase(lost);
        bytes.erase(0, begin);
    }
    const size_t size = bytes.size();
    Push([=, held = std::move(bytes)](Understanding& to) { to.Take(connection, direction, held, time, rule); }, size);
}

// An error, as of memory, must not end the relay.
void Recorder::Carry(const Step& step) {
    try {
        step(mUnderstanding);
    } catch (const std::exception& e) {
        mUnderstanding.Note(std::string("a message was passed on, but not recorded: ") + e.what(), "", TimeStamp());
    }
}

void Recorder::Run() {
    setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), kLessUrgent);
    std::vector<Step> steps;
    std::unique_lock<std::mutex> lock(mMutex);
    while (true) {
        mIdle = mSteps.empty();
        mChanged.wait(lock, [this] { return mStop || !mSteps.empty(); });
        mChanged.wait_for(lock, kPause, [this] { return mStop; });
        if (mSteps.empty() && mStop) break;
        steps.swap(mSteps);
        const size_t bytes = mBytes;
        lock.unlock();
        for (const Step& step : steps) Carry(step);
        steps.clear();
        lock.lock();
        mBytes -= bytes;  // what is being understood takes memory as well
    }
    lock.unlock();
    mUnderstanding.WriteOpen("no reply until the end of the recording");
}

}  // namespace hbbtv::traffic
