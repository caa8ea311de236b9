// Callers who wait for a turn that does not end: who may wait, who is refused, and who leaves.
#include <android/log.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "child_process.h"
#include "ipc/src/tolm_caller_queue.h"
#include "ipc/src/tolm_calling_process.h"
#include "log_capture.h"
#include "process_usage.h"
#include "scratch_directory.h"
#include "wait_for.h"

namespace hbbtv::test {

namespace {

using std::chrono::milliseconds;
using tolm::CallerQueue;
using Clock = CallerQueue::Clock;

constexpr size_t kMost = CallerQueue::kMostWaiting;
constexpr milliseconds kLong = kPatience;

// What FindCallingPid returns for this thread.
thread_local pid_t tCaller = 0;

pid_t Caller() {
    return tCaller;
}

class Callers : public testing::Test {
  protected:
    struct Left {
        int number;
        bool hadTurn;
        Clock::time_point time;
    };

    ~Callers() override {
        for (std::thread& thread : mThreads) thread.join();
    }

    CallerQueue& Make(milliseconds patience, milliseconds longestWait = {}) {
        mQueue = std::make_unique<CallerQueue>("service_of_a_family", longestWait, patience);
        return *mQueue;
    }

    // Starts a caller and waits until it waits for its turn.
    void Queue(CallerQueue& queue, pid_t process = 0) {
        const size_t before = queue.Waiting();
        mThreads.emplace_back([this, &queue, process, number = static_cast<int>(mThreads.size())] {
            tCaller = process;
            const CallerQueue::Turn turn(queue);
            std::lock_guard<std::mutex> lock(mMutex);
            mLeft.push_back({number, static_cast<bool>(turn), Clock::now()});
        });
        ASSERT_TRUE(WaitFor([&] { return queue.Waiting() == before + 1; }));
    }

    std::vector<Left> AllLeft() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mLeft;
    }

    bool WaitForLeft(size_t count) {
        return WaitFor([&] { return AllLeft().size() >= count; });
    }

    std::vector<int> Numbers() {
        std::vector<int> numbers;
        for (const Left& left : AllLeft()) numbers.push_back(left.number);
        return numbers;
    }

    const LogCapture mLog;
    std::mutex mMutex;
    std::vector<Left> mLeft;  // guarded by mMutex
    std::unique_ptr<CallerQueue> mQueue;
    std::vector<std::thread> mThreads;
};

TEST_F(Callers, GetTheirTurnsInOrder) {
    CallerQueue& queue = Make(kLong);
    auto first = std::make_unique<CallerQueue::Turn>(queue);
    ASSERT_TRUE(*first);
    for (int i = 0; i < 40; ++i) Queue(queue);
    EXPECT_TRUE(AllLeft().empty());
    first.reset();
    ASSERT_TRUE(WaitForLeft(40));
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(Numbers()[i], i);
        EXPECT_TRUE(AllLeft()[i].hadTurn) << i;
    }
    EXPECT_TRUE(CallerQueue::Turn(queue));
}

TEST_F(Callers, WhoWaitBehindFifteenAreRefusedWhenPatienceEndsAndNotBefore) {
    CallerQueue& queue = Make(milliseconds(1500));
    const auto begin = Clock::now();
    auto first = std::make_unique<CallerQueue::Turn>(queue);
    for (size_t i = 0; i < kMost + 10; ++i) Queue(queue);
    ASSERT_TRUE(WaitForLeft(10));
    EXPECT_EQ(queue.Waiting(), kMost);
    for (const Left& left : AllLeft()) {
        EXPECT_FALSE(left.hadTurn);
        EXPECT_GE(left.number, static_cast<int>(kMost));
        EXPECT_GE(left.time - begin, milliseconds(1500));
    }
    first.reset();
    ASSERT_TRUE(WaitForLeft(kMost + 10));
    for (size_t i = 10; i < kMost + 10; ++i) EXPECT_TRUE(AllLeft()[i].hadTurn) << i;
}

TEST_F(Callers, AreRefusedAtOnceWhenPatienceHasEndedAndFifteenWait) {
    CallerQueue& queue = Make(milliseconds(1));
    auto first = std::make_unique<CallerQueue::Turn>(queue);
    for (size_t i = 0; i < kMost; ++i) Queue(queue);
    ASSERT_EQ(queue.Waiting(), kMost);
    for (int i = 0; i < 100; ++i) EXPECT_FALSE(CallerQueue::Turn(queue));
    EXPECT_EQ(queue.Waiting(), kMost);
    EXPECT_TRUE(AllLeft().empty());
    first.reset();
}

TEST_F(Callers, AreCountedByTheTurnThatIsTaken) {
    CallerQueue& queue = Make(milliseconds(2000));
    auto first = std::make_unique<CallerQueue::Turn>(queue);
    std::atomic<bool> second{false};
    std::atomic<bool> end{false};
    std::thread next([&] {
        const CallerQueue::Turn turn(queue);
        second = static_cast<bool>(turn);
        WaitFor([&] { return end.load(); });
    });
    ASSERT_TRUE(WaitFor([&] { return queue.Waiting() == 1; }));
    const auto begin = Clock::now();
    ASSERT_TRUE(WaitFor([&] { return Clock::now() - begin > milliseconds(1500); }));
    first.reset();
    const auto handedOver = Clock::now();
    ASSERT_TRUE(WaitFor([&] { return second.load(); }));
    // The patience with the second turn begins when it is taken.
    for (size_t i = 0; i < kMost + 1; ++i) Queue(queue);
    ASSERT_TRUE(WaitForLeft(1));
    EXPECT_GE(AllLeft()[0].time - handedOver, milliseconds(1950));
    end = true;
    next.join();
}

TEST_F(Callers, WhoAreRefusedGetALineASecond) {
    CallerQueue& queue = Make(milliseconds(1));
    auto first = std::make_unique<CallerQueue::Turn>(queue);
    for (size_t i = 0; i < kMost; ++i) Queue(queue);
    const auto begin = Clock::now();
    size_t refused = 0;
    for (; Clock::now() - begin < milliseconds(1500); ++refused) EXPECT_FALSE(CallerQueue::Turn(queue));
    ASSERT_GT(refused, 10u);
    ASSERT_EQ(mLog.Lines().size(), 2u) << mLog.Text();
    for (const LogLine& line : mLog.Lines()) {
        EXPECT_EQ(line.priority, ANDROID_LOG_WARN);
        EXPECT_EQ(line.tag, "[ipc_base]");
        EXPECT_EQ(
            line.message.rfind("SendIpc failed 0 1 1: no turn for service_of_a_family, the open one has lasted ", 0),
            0u)
            << line.message;
    }
    const std::string last = mLog.Lines()[1].message;
    EXPECT_NE(last.find(" ms, 15 wait, "), std::string::npos) << last;
    EXPECT_GT(std::atoi(last.c_str() + last.rfind(',') + 1), 1) << last;
    first.reset();
}

TEST_F(Callers, WaitNoLongerThanTheLimit) {
    CallerQueue& queue = Make(kLong, milliseconds(100));
    const auto first = std::make_unique<CallerQueue::Turn>(queue);
    const auto begin = Clock::now();
    EXPECT_FALSE(CallerQueue::Turn(queue));
    EXPECT_GE(Clock::now() - begin, milliseconds(100));
    EXPECT_LT(Clock::now() - begin, kLong);
    EXPECT_EQ(queue.Waiting(), 0u);
}

class CallersOfProcesses : public Callers {
  protected:
    CallersOfProcesses() { tolm::SetFindCallingPid(Caller); }

    const ScratchDirectory mDirectory;
};

TEST_F(CallersOfProcesses, LeaveWhenTheirProcessDiesAndTheOthersStay) {
    CallerQueue& queue = Make(kLong);
    auto first = std::make_unique<CallerQueue::Turn>(queue);
    ChildProcess living({"sleep", "1000"});
    auto dying = std::make_unique<ChildProcess>(std::vector<std::string>{"sleep", "1000"});
    const int descriptors = UsageOfThisProcess().descriptors;
    for (int i = 0; i < 10; ++i) {
        Queue(queue, living.Pid());
        Queue(queue, dying->Pid());
        Queue(queue, getpid());
    }
    dying->Kill();
    ASSERT_TRUE(WaitForLeft(10));
    for (const Left& left : AllLeft()) {
        EXPECT_FALSE(left.hadTurn);
        EXPECT_EQ(left.number % 3, 1) << left.number;
    }
    EXPECT_EQ(queue.Waiting(), 20u);
    // The callers of a process share a descriptor.
    EXPECT_TRUE(WaitFor([&] { return UsageOfThisProcess().descriptors <= descriptors + 1; }));
    EXPECT_TRUE(mLog.Lines().empty()) << mLog.Text();
    first.reset();
    ASSERT_TRUE(WaitForLeft(30));
    EXPECT_EQ(queue.Waiting(), 0u);
}

TEST_F(CallersOfProcesses, LeaveAlsoWhenTheirProcessIsAZombie) {
    CallerQueue& queue = Make(kLong);
    const auto first = std::make_unique<CallerQueue::Turn>(queue);
    const pid_t zombie = fork();
    if (zombie == 0) _exit(0);
    Queue(queue, zombie);
    EXPECT_TRUE(WaitForLeft(1));
    EXPECT_EQ(waitpid(zombie, nullptr, 0), zombie);
}

TEST_F(CallersOfProcesses, LeaveWhenTheirProcessHadDiedBeforeTheyCame) {
    CallerQueue& queue = Make(kLong);
    const auto first = std::make_unique<CallerQueue::Turn>(queue);
    ChildProcess dead({"true"});
    ASSERT_TRUE(dead.WaitForExit().has_value());
    Queue(queue, dead.Pid());
    EXPECT_TRUE(WaitForLeft(1));
}

}  // namespace

}  // namespace hbbtv::test
