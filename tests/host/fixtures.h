// Shared by the tests of the runtime: a service in another process, a listener, and a recipient of death notifications.
#pragma once

#include <gtest/gtest.h>
#include <hidl/HidlTransportSupport.h>
#include <hidl/ServiceManagement.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "child_process.h"
#include "scratch_directory.h"
#include "workshop.h"

namespace hbbtv::test {

using ::android::wp;
using ::android::hardware::getOrCreateCachedBinder;
using ::android::hardware::hidl_death_recipient;
using ::android::hardware::interfacesEqual;
using ::android::hardware::Status;
using ::android::hidl::base::V1_0::IBase;

// The other process, with a role of peer.cpp. The constructor waits until it is ready.
class Peer : public ChildProcess {
  public:
    explicit Peer(const std::vector<std::string>& role) : ChildProcess(CommandOf(role)) {
        EXPECT_TRUE(WaitForOutput("ready")) << Output();
    }

  private:
    static std::vector<std::string> CommandOf(const std::vector<std::string>& role) {
        std::vector<std::string> command = {HOST_TEST_PEER};
        command.insert(command.end(), role.begin(), role.end());
        return command;
    }
};

// A directory for this test, and a workshop "default" with two threads in another process.
class WithService : public ::testing::Test {
  protected:
    void SetUp() override {
        mService = IWorkshop::getService();
        ASSERT_NE(mService, nullptr);
    }

    const ScratchDirectory mScratch;
    Peer mPeer{{"serve", "default", "2"}};
    sp<IWorkshop> mService;
};

// A thread that makes one call and is joined by the destructor at the latest.
class Caller {
  public:
    explicit Caller(std::function<void()> call)
        : mThread([this, call] {
              call();
              mDone = true;
          }) {}
    ~Caller() { Join(); }
    void Join() {
        if (mThread.joinable()) mThread.join();
    }
    bool Done() const { return mDone; }

  private:
    std::atomic<bool> mDone{false};
    std::thread mThread;
};

class Listener : public IListener {
  public:
    Return<void> onEvent(uint32_t number) override {
        std::lock_guard<std::mutex> lock(mMutex);
        mEvents.push_back(number);
        mThreads.push_back(std::this_thread::get_id());
        return Void();
    }
    Return<void> onItem(const Item&) override { return Void(); }
    Return<void> answer(const hidl_string& question, answer_cb callback) override {
        {
            std::lock_guard<std::mutex> lock(mMutex);
            mThreads.push_back(std::this_thread::get_id());
        }
        callback("answer to " + std::string(question));
        return Void();
    }

    std::vector<uint32_t> Events() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mEvents;
    }
    // The threads on which it was called.
    std::vector<std::thread::id> Threads() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mThreads;
    }

  private:
    std::mutex mMutex;
    std::vector<uint32_t> mEvents;
    std::vector<std::thread::id> mThreads;
};

class Recipient : public hidl_death_recipient {
  public:
    explicit Recipient(std::function<void(const wp<IBase>&)> then = nullptr) : mThen(std::move(then)) {}

    void serviceDied(uint64_t cookie, const wp<IBase>& who) override {
        if (mThen) mThen(who);
        std::lock_guard<std::mutex> lock(mMutex);
        mCookies.push_back(cookie);
        mThread = std::this_thread::get_id();
    }

    std::vector<uint64_t> Cookies() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCookies;
    }
    size_t Notices() { return Cookies().size(); }
    std::thread::id Thread() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mThread;
    }

  private:
    const std::function<void(const wp<IBase>&)> mThen;
    std::mutex mMutex;
    std::vector<uint64_t> mCookies;
    std::thread::id mThread;
};

inline std::string Echo(const sp<IWorkshop>& service, const std::string& text) {
    std::string answer;
    const Return<void> echoed = service->echo(text, [&](const hidl_string& reply) { answer = reply; });
    return echoed.isOk() ? answer : "?" + echoed.description();
}

inline std::string Ask(const sp<IWorkshop>& service, const std::string& question) {
    std::string answer;
    const Return<void> asked = service->ask(question, [&](const hidl_string& reply) { answer = reply; });
    return asked.isOk() ? answer : "?" + asked.description();
}

inline std::vector<uint32_t> Posted(const sp<IWorkshop>& service) {
    std::vector<uint32_t> numbers;
    const Return<void> asked = service->posted([&](const hidl_vec<uint32_t>& posted) { numbers = posted; });
    EXPECT_TRUE(asked.isOk());
    return numbers;
}

// Returns 0, 1, ..., count - 1.
inline std::vector<uint32_t> CountUp(uint32_t count) {
    std::vector<uint32_t> numbers;
    for (uint32_t i = 0; i < count; ++i) numbers.push_back(i);
    return numbers;
}

// Returns whether this process has a thread of this name.
inline bool HasThread(const std::string& name) {
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string comm;
        std::getline(std::ifstream(task.path() / "comm"), comm);
        if (comm == name) return true;
    }
    return false;
}

inline uint32_t Holding(const sp<IWorkshop>& service) {
    return service->holding().withDefault(1000000);
}

}  // namespace hbbtv::test
