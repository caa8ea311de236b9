// Families that do not answer, and clients that are killed while they wait: the other families answer as ever, and all
// is as before when the platform answers again or is restarted.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "family_calls.h"
#include "raw_listener.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr int kLiving = 90;
constexpr int kKilledClients = 8;
constexpr int kCallersOfAClient = 10;
constexpr int kMostWaiting = 15;
constexpr milliseconds kPatienceOfTheService{5000};
constexpr milliseconds kAnswered{50};
constexpr int kStatus = 5;  // not 0, so that replies need no results
// One at a time, also apart from the other requests of its family.
constexpr FamilyCall kRegistration = {"video_broadcast", "IVideoBroadcast", "UnregisterCallback", "[4096]"};

constexpr char kReply5[] = R"({"ret": 5})";

// The threads of a process that wait: those that call have sent their calls.
size_t SleepingThreads(pid_t pid) {
    size_t sleeping = 0;
    std::error_code ended;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task", ended)) {
        std::string stat;
        std::getline(std::ifstream(task.path() / "stat"), stat);
        const size_t state = stat.rfind(") ");
        if (state != std::string::npos && stat[state + 2] == 'S') ++sleeping;
    }
    return sleeping;
}

size_t Count(const std::string& words, const std::string& output) {
    size_t count = 0;
    for (size_t at = output.find(words); at != std::string::npos; at = output.find(words, at + 1)) ++count;
    return count;
}

// Calls in turn, on its own thread, what must be answered although families are silent.
class Probe {
  public:
    explicit Probe(std::vector<FamilyCall> calls) : mCalls(std::move(calls)), mThread([this] { Run(); }) {}
    ~Probe() {
        mStop = true;
        mThread.join();
    }

    // Returns whether each call is answered after this.
    bool Advances() {
        const int before = mRounds;
        return WaitFor([&] { return mRounds >= before + 2; });
    }

    // Expects that no call has failed and that nearly all were answered in kAnswered: a busy machine may delay single
    // ones.
    void ExpectAnsweredInTime() {
        std::lock_guard<std::mutex> lock(mMutex);
        EXPECT_EQ(mFailed, std::vector<std::string>());
        EXPECT_LE(mLate.size(), static_cast<size_t>(mCalled / 100)) << testing::PrintToString(mLate);
    }

  private:
    void Run() {
        for (; !mStop; ++mRounds) {
            for (const FamilyCall& call : mCalls) {
                if (!mStop) Check(call);
            }
        }
    }

    void Check(const FamilyCall& call) {
        const auto begin = Clock::now();
        const int status = Make(call);
        const auto took = std::chrono::duration_cast<milliseconds>(Clock::now() - begin);
        const std::string name = std::string(call.interface) + "." + call.method;
        std::lock_guard<std::mutex> lock(mMutex);
        ++mCalled;
        if (status != kStatus && status != 0) mFailed.push_back(name + " returned " + std::to_string(status));
        if (took > kAnswered) mLate.push_back(name + " took " + std::to_string(took.count()) + " ms");
    }

    const std::vector<FamilyCall> mCalls;
    std::atomic<bool> mStop{false};
    std::atomic<int> mRounds{0};
    std::mutex mMutex;
    int mCalled = 0;  // guarded by mMutex, like all below
    std::vector<std::string> mFailed;
    std::vector<std::string> mLate;
    std::thread mThread;
};

// Callers of this process, each on its own thread.
class LivingCallers {
  public:
    struct Left {
        int status;
        milliseconds after;  // the begin of the first call
    };

    ~LivingCallers() {
        for (std::thread& thread : mThreads) thread.join();
    }

    void Call(const FamilyCall& call) {
        Start([call] { return Make(call); });
    }

    // Calls again until it fails, or all repeated calls are to end.
    void CallRepeatedly(const FamilyCall& call) {
        Start([this, call] {
            int status = 0;
            while (status == 0 && mRepeats) status = Make(call);
            return status;
        });
    }

    void EndRepeatedCalls() { mRepeats = false; }

    std::vector<Left> AllLeft() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mLeft;
    }

    bool WaitForLeft(size_t count) {
        return WaitFor([&] { return AllLeft().size() >= count; });
    }

    milliseconds Age() const { return std::chrono::duration_cast<milliseconds>(Clock::now() - mBegin); }

  private:
    void Start(std::function<int()> call) {
        mThreads.emplace_back([this, call = std::move(call)] {
            const int status = call();
            std::lock_guard<std::mutex> lock(mMutex);
            mLeft.push_back({status, std::chrono::duration_cast<milliseconds>(Clock::now() - mBegin)});
        });
    }

    const Clock::time_point mBegin = Clock::now();
    std::atomic<bool> mRepeats{true};
    std::mutex mMutex;
    std::vector<Left> mLeft;  // guarded by mMutex
    std::list<std::thread> mThreads;
};

struct Silence {
    const char* name;
    int families;
    bool restarts;           // the platform is restarted; else it answers the open requests in the end
    bool registers = false;  // the callers of this process
};

void PrintTo(const Silence& silence, std::ostream* out) {
    *out << silence.name;
}

class SilentFamilies : public testing::TestWithParam<Silence> {
  protected:
    void SetUp() override {
        for (const FamilyCall& call : kFamilyCalls) {
            const bool silent = IsSilent(mPlatforms.size());
            mPlatforms.push_back(std::make_unique<FakePlatform>(RequestsOf(FindFamily(call.family)).socket, kReply5));
            if (silent && GetParam().restarts) {
                mPlatforms.back()->SetAnswer([](const Frame&) { return std::nullopt; });
            } else if (silent) {
                mPlatforms.back()->SetAnswer([this](const Frame&) { return AnswerInTheEnd(); });
            }
        }
        mOneWay = std::make_unique<FakePlatform>(RequestsOf(FindFamily(kOneWayCall.family)).socket, kReply5);
        mService = std::make_unique<ServiceProcess>();
        ASSERT_NE(Find<vantorel::hardware::hbbtv::V1_0::IVideoBroadcast>(), nullptr);
    }

    // Ends whatever still waits, also when the test has failed.
    void TearDown() override {
        Open();
        mService->Kill();
        mProbe.reset();
        mCallers.reset();
    }

    bool IsSilent(size_t family) const { return static_cast<int>(family) < GetParam().families; }

    std::string AnswerInTheEnd() {
        std::unique_lock<std::mutex> lock(mMutex);
        mOpened.wait(lock, [this] { return mOpen; });
        return kReply5;
    }

    void Open() {
        std::lock_guard<std::mutex> lock(mMutex);
        mOpen = true;
        mOpened.notify_all();
    }

    FamilyCall CallOf(int family) const { return GetParam().registers ? kRegistration : kFamilyCalls[family]; }

    // The callers of this process come first, so that they have the places of those who wait.
    void CallAll() {
        std::vector<FamilyCall> answering{kOneWayCall};
        for (size_t i = 0; i < std::size(kFamilyCalls); ++i) {
            if (!IsSilent(i)) answering.push_back(kFamilyCalls[i]);
        }
        mProbe = std::make_unique<Probe>(answering);
        ASSERT_TRUE(mProbe->Advances());
        mCallers = std::make_unique<LivingCallers>();
        for (int i = 0; i < kLiving; ++i) mCallers->Call(CallOf(i % GetParam().families));
        ASSERT_TRUE(WaitFor([] { return SleepingThreads(getpid()) >= kLiving; }));
        for (int family = 0; family < GetParam().families; ++family) {
            ASSERT_TRUE(mPlatforms[family]->WaitForFrames(1)) << kFamilyCalls[family].family;
        }
    }

    void KillClients() {
        for (int i = 0; i < kKilledClients; ++i) {
            ChildProcess client(
                {HBBTV_CALLING_CLIENT_PROGRAM, std::to_string(kCallersOfAClient), std::to_string(GetParam().families)});
            // On a slow machine, the patience with the silent families has ended, and some are refused.
            ASSERT_TRUE(WaitFor([&] {
                const size_t answered = Count("answered ", client.Output());
                return answered == kCallersOfAClient || SleepingThreads(client.Pid()) + answered > kCallersOfAClient;
            })) << i;
            client.Kill();
        }
    }

    // The callers for whom there is no place in a family: one is in its turn.
    int Surplus() const {
        int surplus = 0;
        for (int family = 0; family < GetParam().families; ++family) {
            const int callers = (kLiving + GetParam().families - 1 - family) / GetParam().families;
            surplus += std::max(0, callers - 1 - kMostWaiting);
        }
        return surplus;
    }

    size_t Refusals() const { return Count("SendIpc failed 0 1 1: no turn for ", mService->Output()); }

    void ExpectSurplusIsRefused() {
        ASSERT_TRUE(mCallers->WaitForLeft(Surplus()));
        ASSERT_TRUE(WaitFor([&] { return mCallers->Age() > kPatienceOfTheService + milliseconds(500); }));
        const std::vector<LivingCallers::Left> refused = mCallers->AllLeft();
        EXPECT_EQ(refused.size(), static_cast<size_t>(Surplus()));
        for (const LivingCallers::Left& left : refused) {
            EXPECT_EQ(left.status, -1);
            EXPECT_GE(left.after, kPatienceOfTheService);
        }
        if (refused.empty()) return;
        // A further caller does not wait.
        EXPECT_TRUE(WaitFor([this] {
            const auto begin = Clock::now();
            return Make(CallOf(0)) == -1 && Clock::now() - begin <= kAnswered;
        }));
        EXPECT_GE(Refusals(), 1u);
        const auto seconds = static_cast<size_t>(mCallers->Age().count() / 1000 - 5 + 2);
        EXPECT_LE(Refusals(), seconds * GetParam().families) << mService->Output();
    }

    // The requests of those who died or were refused are never sent.
    void ExpectOnlyTheLivingAreServed() {
        Open();
        ASSERT_TRUE(mCallers->WaitForLeft(kLiving));
        const std::vector<LivingCallers::Left> all = mCallers->AllLeft();
        for (size_t i = Surplus(); i < all.size(); ++i) EXPECT_EQ(all[i].status, kStatus);
        size_t frames = 0;
        for (int family = 0; family < GetParam().families; ++family) frames += mPlatforms[family]->Frames().size();
        EXPECT_EQ(frames, static_cast<size_t>(kLiving - Surplus()));
    }

    void RestartPlatform() {
        for (int family = 0; family < GetParam().families; ++family) {
            EXPECT_EQ(mPlatforms[family]->Frames().size(), 1u);
            const std::string socket = RequestsOf(FindFamily(kFamilyCalls[family].family)).socket;
            mPlatforms[family].reset();
            mPlatforms[family] = std::make_unique<FakePlatform>(socket, kReply5);
        }
        ASSERT_TRUE(mCallers->WaitForLeft(kLiving));
    }

    void ExpectAllIsAsBefore() {
        for (int family = 0; family < GetParam().families; ++family) {
            const FamilyCall& call = kFamilyCalls[family];
            // The first request after a restart may find out that the connection has ended.
            EXPECT_TRUE(WaitFor([&] { return Make(call) == kStatus; })) << call.family;
        }
        LivingCallers again;
        for (int i = 0; i < kLiving; ++i) again.Call(kFamilyCalls[i % GetParam().families]);
        EXPECT_TRUE(again.WaitForLeft(kLiving));
        for (const LivingCallers::Left& left : again.AllLeft()) EXPECT_EQ(left.status, kStatus);
    }

    const ScratchDirectory mDirectory;
    std::mutex mMutex;
    std::condition_variable mOpened;
    bool mOpen = false;  // guarded by mMutex
    std::vector<std::unique_ptr<FakePlatform>> mPlatforms;
    std::unique_ptr<FakePlatform> mOneWay;
    std::unique_ptr<ServiceProcess> mService;
    std::unique_ptr<Probe> mProbe;
    std::unique_ptr<LivingCallers> mCallers;
};

TEST_P(SilentFamilies, KeepTheirCallersAndNoThreadOfTheOthers) {
    ASSERT_NO_FATAL_FAILURE(CallAll());
    ASSERT_NO_FATAL_FAILURE(KillClients());
    ASSERT_TRUE(mProbe->Advances()) << "no thread is left for the other families";
    ASSERT_NO_FATAL_FAILURE(ExpectSurplusIsRefused());
    ASSERT_TRUE(mProbe->Advances());
    if (GetParam().restarts) {
        ASSERT_NO_FATAL_FAILURE(RestartPlatform());
    } else {
        ASSERT_NO_FATAL_FAILURE(ExpectOnlyTheLivingAreServed());
    }
    ExpectAllIsAsBefore();
    ASSERT_TRUE(mProbe->Advances());
    mProbe->ExpectAnsweredInTime();
}

INSTANTIATE_TEST_SUITE_P(
    Of, SilentFamilies,
    testing::Values(Silence{"OneThatAnswersAgain", 1, false}, Silence{"OneThatIsRestarted", 1, true},
                    Silence{"OneWithWhichClientsRegister", 1, false, true}, Silence{"TwoThatAnswerAgain", 2, false},
                    Silence{"AllThatAnswerAgain", static_cast<int>(std::size(kFamilyCalls)), false},
                    Silence{"AllThatAreRestarted", static_cast<int>(std::size(kFamilyCalls)), true}),
    [](const auto& silence) { return std::string(silence.param.name); });

// One-way messages are written to the socket until it is full.
TEST(PlatformThatDoesNotRead, KeepsItsCallersAndNoThreadOfTheOthers) {
    const ScratchDirectory directory;
    RawListener listener(directory / RequestsOf(FindFamily(kOneWayCall.family)).socket);
    std::list<FakePlatform> others;
    for (const FamilyCall& call : kFamilyCalls) {
        others.emplace_back(RequestsOf(FindFamily(call.family)).socket, kReply5);
    }
    LivingCallers callers;
    const ServiceProcess service;  // ends first, and all calls with it
    ASSERT_NE(Find<vantorel::hardware::hbbtv::V1_0::IVideoBroadcast>(), nullptr);
    Probe probe({std::begin(kFamilyCalls), std::end(kFamilyCalls)});
    ASSERT_TRUE(probe.Advances());

    for (int i = 0; i < kLiving; ++i) callers.CallRepeatedly(kOneWayCall);
    constexpr size_t kSurplus = kLiving - 1 - kMostWaiting;
    EXPECT_TRUE(callers.WaitForLeft(kSurplus));
    ASSERT_TRUE(probe.Advances()) << "no thread is left for the other families";
    const std::vector<LivingCallers::Left> refused = callers.AllLeft();
    EXPECT_EQ(refused.size(), kSurplus);
    for (const LivingCallers::Left& left : refused) {
        EXPECT_EQ(left.status, -1);
        EXPECT_GE(left.after, kPatienceOfTheService);
    }

    callers.EndRepeatedCalls();
    RawConnection connection = listener.Accept();
    while (callers.AllLeft().size() < kLiving && connection.ReadFrame()) {
    }
    const std::vector<LivingCallers::Left> all = callers.AllLeft();
    ASSERT_EQ(all.size(), static_cast<size_t>(kLiving));
    for (size_t i = kSurplus; i < all.size(); ++i) EXPECT_EQ(all[i].status, 0);
    probe.ExpectAnsweredInTime();
}

}  // namespace

}  // namespace hbbtv::test
