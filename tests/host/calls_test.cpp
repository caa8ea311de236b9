// Calls between two processes: data, threads and failures.
#include <cutils/native_handle.h>
#include <fcntl.h>
#include <hwbinder/IPCThreadState.h>
#include <hwbinder/Parcel.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

#include "fixtures.h"

namespace hbbtv::test {

using ::android::sp;
using ::android::hardware::hidl_handle;
using ::android::hardware::IBinder;
using ::android::hardware::IPCThreadState;
using ::android::hardware::Parcel;

namespace {

using DataAcrossProcesses = WithService;
using Calls = WithService;
using OnewayCalls = WithService;
using Callbacks = WithService;
using TransportErrors = WithService;

// Makes a call that a proxy would not make.
Status CallByHand(const sp<IBase>& proxy, const char* token, uint32_t method, uint32_t flags) {
    Parcel data;
    Parcel reply;
    data.writeInterfaceToken(token);
    return Status::fromStatusT(getOrCreateCachedBinder(proxy.get())->transact(method, data, &reply, flags));
}

// Returns how often the threads of a process have waited for something.
long WaitsOf(pid_t pid) {
    const std::string key = "voluntary_ctxt_switches:";
    long waits = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task")) {
        std::ifstream status(task.path() / "status");
        for (std::string line; std::getline(status, line);) {
            if (line.rfind(key, 0) == 0) waits += std::stol(line.substr(key.size()));
        }
    }
    return waits;
}

// Writes to a pipe, and reads from it what others wrote once all have closed their end.
class Pipe {
  public:
    Pipe() { EXPECT_EQ(pipe2(mEnds, O_CLOEXEC), 0); }
    ~Pipe() { close(mEnds[0]); }
    int WritingEnd() const { return mEnds[1]; }
    std::string Text() {
        close(mEnds[1]);
        std::string text;
        char bytes[256];
        for (ssize_t n; (n = read(mEnds[0], bytes, sizeof(bytes))) > 0;) text.append(bytes, static_cast<size_t>(n));
        return text;
    }

  private:
    int mEnds[2];
};

// A native handle of the caller's descriptors.
struct Handle {
    explicit Handle(const std::vector<int>& fds, const std::vector<int>& ints = {})
        : handle(native_handle_create(static_cast<int>(fds.size()), static_cast<int>(ints.size()))) {
        std::copy(fds.begin(), fds.end(), handle->data);
        std::copy(ints.begin(), ints.end(), handle->data + fds.size());
    }
    ~Handle() { native_handle_delete(handle); }
    native_handle_t* const handle;
};

}  // namespace

TEST_F(DataAcrossProcesses, ScalarsKeepTheirExtremes) {
    bool called = false;
    const Return<void> extremes = mService->scalars(
        true, std::numeric_limits<int32_t>::min(), std::numeric_limits<uint32_t>::max(),
        std::numeric_limits<int64_t>::min(), std::numeric_limits<uint64_t>::max(), 0.1, [&](const auto& same) {
            called = true;
            EXPECT_TRUE(same.truth);
            EXPECT_EQ(same.small, std::numeric_limits<int32_t>::min());
            EXPECT_EQ(same.natural, std::numeric_limits<uint32_t>::max());
            EXPECT_EQ(same.big, std::numeric_limits<int64_t>::min());
            EXPECT_EQ(same.huge, std::numeric_limits<uint64_t>::max());
            EXPECT_EQ(same.real, 0.1);
        });
    EXPECT_TRUE(extremes.isOk());
    EXPECT_TRUE(called);
}

TEST_F(DataAcrossProcesses, EnumsComeBack) {
    EXPECT_EQ(static_cast<Colour>(mService->nextColour(Colour::GREEN)), Colour::BLUE);
    EXPECT_EQ(static_cast<Colour>(mService->nextColour(Colour::BLUE)), Colour::RED);
}

TEST_F(DataAcrossProcesses, StringsKeepEmbeddedNulsButCompareUpToTheFirst) {
    const std::string text("front\0back", 10);
    bool called = false;
    const Return<void> echoed = mService->echo(text, [&](const hidl_string& same) {
        called = true;
        EXPECT_EQ(same.size(), 10u);
        EXPECT_EQ(std::string(same), text);
        EXPECT_EQ(same, hidl_string("front"));
        EXPECT_EQ(::android::hardware::toString(same), "\"front\"");
    });
    EXPECT_TRUE(echoed.isOk() && called);
    EXPECT_EQ(Echo(mService, ""), "");
}

TEST_F(DataAcrossProcesses, VectorsOfScalarsAndStringsComeBack) {
    for (const size_t size : {0u, 1u, 1000u}) {
        hidl_vec<uint32_t> numbers(size);
        hidl_vec<hidl_string> words(size);
        for (size_t i = 0; i < size; ++i) {
            numbers[i] = static_cast<uint32_t>(i * 7);
            words[i] = std::string(i % 20, 'x');
        }
        int called = 0;
        const Return<void> first = mService->numbers(numbers, [&](const auto& same) { called += same == numbers; });
        const Return<void> second = mService->words(words, [&](const auto& same) { called += same == words; });
        EXPECT_TRUE(first.isOk() && second.isOk());
        EXPECT_EQ(called, 2) << size;
    }
}

TEST_F(DataAcrossProcesses, StructsWithStringsAndVectorsComeBack) {
    hidl_vec<Item> items;
    items.resize(9);
    for (uint32_t i = 0; i < 9; ++i) items[i] = MakeItem(i);
    bool same = false;
    EXPECT_TRUE(mService->items(items, [&](const hidl_vec<Item>& back) { same = back == items; }).isOk());
    EXPECT_TRUE(same);
}

TEST_F(DataAcrossProcesses, SeveralResultsArriveTogether) {
    bool called = false;
    const Return<void> summary =
        mService->summary({MakeItem(2), MakeItem(3)}, "All",
                          [&](int32_t status, const auto& title, uint32_t total, const auto& names, const Item& first) {
                              called = true;
                              EXPECT_EQ(status, 0);
                              EXPECT_EQ(title, "All!");
                              EXPECT_EQ(total, 15u);
                              EXPECT_EQ(names, (hidl_vec<hidl_string>{"item 2", "item 3"}));
                              EXPECT_EQ(MakeItem(2), first);
                          });
    EXPECT_TRUE(summary.isOk() && called);
}

TEST_F(DataAcrossProcesses, ResultsOutliveTheCallbackOnlyAsCopies) {
    hidl_vec<Item> kept;
    EXPECT_TRUE(mService->items({MakeItem(3)}, [&](const hidl_vec<Item>& back) { kept = back; }).isOk());
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(kept[0], MakeItem(3));
}

TEST_F(DataAcrossProcesses, ADataTypeConvertsToAString) {
    EXPECT_EQ(toString(Colour::GREEN), "GREEN");
    int values = 0;
    for (const Colour colour : ::android::hardware::hidl_enum_range<Colour>()) values += colour <= Colour::BLUE;
    EXPECT_EQ(values, 3);
    EXPECT_NE(toString(MakeItem(1)).find(".name = \"item 1\""), std::string::npos);
}

TEST_F(DataAcrossProcesses, TheBaseInterfaceAnswers) {
    std::string descriptor;
    size_t hashes = 0;
    int32_t pid = 0;
    EXPECT_TRUE(mService->ping().isOk());
    EXPECT_TRUE(mService->interfaceDescriptor([&](const auto& name) { descriptor = name; }).isOk());
    EXPECT_TRUE(mService->getHashChain([&](const auto& chain) { hashes = chain.size(); }).isOk());
    EXPECT_TRUE(mService->getDebugInfo([&](const auto& info) { pid = info.pid; }).isOk());
    EXPECT_TRUE(mService->debug(::android::hardware::hidl_handle(), {"option"}).isOk());
    EXPECT_TRUE(mService->notifySyspropsChanged().isOk());
    EXPECT_EQ(descriptor, IWorkbench::descriptor);
    EXPECT_EQ(hashes, 3u);
    EXPECT_EQ(pid, mPeer.Pid());
}

TEST_F(Calls, TheDescriptorsAndNumbersOfAHandleArrive) {
    Pipe first;
    Pipe second;
    {
        const Handle both({first.WritingEnd(), second.WritingEnd()}, {7, -8});
        EXPECT_TRUE(mService->debug(hidl_handle(both.handle), {"--json", "all"}).isOk());
    }
    // The end of the stream shows that the service has closed its copies.
    EXPECT_EQ(first.Text(), "0: --json all 7 -8 \n");
    EXPECT_EQ(second.Text(), "1: --json all 7 -8 \n");
}

TEST_F(Calls, AHandleOfManyDescriptorsIsRefused) {
    const Handle many(std::vector<int>(9, STDOUT_FILENO));
    const Return<void> refused = mService->debug(hidl_handle(many.handle), {});
    EXPECT_FALSE(refused.isOk());
    EXPECT_NE(refused.description().find("INVALID_OPERATION"), std::string::npos);
    EXPECT_TRUE(mService->ping().isOk());
}

TEST_F(Callbacks, ANullInterfaceArrivesAsNull) {
    EXPECT_FALSE(mService->setListener(nullptr).withDefault(true));
    const Return<sp<IListener>> none = mService->listener();
    ASSERT_TRUE(none.isOk());
    EXPECT_EQ(static_cast<sp<IListener>>(none), nullptr);
    const sp<Workshop> local = new Workshop;
    EXPECT_FALSE(local->setListener(nullptr).withDefault(true));
}

TEST_F(Callbacks, AnObjectThatReturnsToItsProcessIsItself) {
    const sp<Listener> listener = new Listener;
    ASSERT_TRUE(mService->setListener(listener).withDefault(false));
    const sp<IListener> home = mService->listener();
    EXPECT_EQ(home.get(), listener.get());
    EXPECT_FALSE(home->isRemote());
}

TEST_F(Callbacks, EveryArrivalIsANewProxyOfTheSameObject) {
    const sp<IBouncer> first = mService->bouncer();
    const sp<IBouncer> other = mService->bouncer();
    EXPECT_FALSE(interfacesEqual(first, other));

    const sp<IWorkshop> once = IWorkshop::getService();
    const sp<IWorkshop> again = IWorkshop::getService();
    EXPECT_NE(once, again);
    EXPECT_TRUE(interfacesEqual(once, again));
    EXPECT_FALSE(interfacesEqual(once, nullptr));
    EXPECT_EQ(getOrCreateCachedBinder(once.get()), getOrCreateCachedBinder(again.get()));

    // The same holds for the service and the objects of this process.
    const sp<Listener> listener = new Listener;
    ASSERT_TRUE(mService->setListener(listener).withDefault(false));
    EXPECT_TRUE(mService->isListener(listener).withDefault(false));
    EXPECT_FALSE(mService->isListener(new Listener).withDefault(true));
}

TEST_F(Callbacks, AnObjectWithoutReferencesIsReleased) {
    const sp<Listener> listener = new Listener;
    const wp<Listener> weak = listener;
    ASSERT_TRUE(mService->setListener(listener).withDefault(false));
    EXPECT_GT(listener->getStrongCount(), 1);
    ASSERT_FALSE(mService->setListener(nullptr).withDefault(true));
    EXPECT_TRUE(WaitFor([&] { return listener->getStrongCount() == 1; }));
}

TEST_F(Callbacks, AreServedByTheThreadThatWaitsForTheCall) {
    const sp<Listener> listener = new Listener;
    ASSERT_TRUE(mService->setListener(listener).withDefault(false));
    EXPECT_EQ(Ask(mService, "why"), "answer to why");
    EXPECT_EQ(listener->Threads(), std::vector<std::thread::id>{std::this_thread::get_id()});
}

TEST_F(Callbacks, FromOtherThreadsOfTheServiceAreServedByThePool) {
    const sp<Listener> listener = new Listener;
    ASSERT_TRUE(mService->setListener(listener).withDefault(false));
    std::string answer;
    EXPECT_TRUE(mService->askFromElsewhere("why", [&](const auto& reply) { answer = reply; }).isOk());
    EXPECT_EQ(answer, "answer to why");
    ASSERT_EQ(listener->Threads().size(), 1u);
    EXPECT_NE(listener->Threads()[0], std::this_thread::get_id());
}

// Stores the process that calls.
class AskedListener : public Listener {
  public:
    Return<void> answer(const hidl_string& question, answer_cb callback) override {
        mCaller = IPCThreadState::self()->getCallingPid();
        return Listener::answer(question, callback);
    }
    std::atomic<pid_t> mCaller{0};
};

TEST_F(Callbacks, KnowTheProcessThatCallsAsTheServiceDoes) {
    const sp<AskedListener> listener = new AskedListener;
    ASSERT_TRUE(mService->setListener(listener).withDefault(false));
    bool called = false;
    const Return<void> returned = mService->caller([&](int32_t before, int32_t after) {
        called = true;
        EXPECT_EQ(before, getpid());
        EXPECT_EQ(after, getpid());
    });
    EXPECT_TRUE(returned.isOk());
    EXPECT_TRUE(called);
    EXPECT_EQ(listener->mCaller, mPeer.Pid());
    EXPECT_EQ(IPCThreadState::self()->getCallingPid(), getpid());
}

TEST_F(Callbacks, NestTwentyLevelsDeepOnOneThread) {
    const sp<Bouncer> mine = new Bouncer;
    const sp<IBouncer> theirs = mService->bouncer();
    EXPECT_EQ(theirs->bounce(20, mine).withDefault(0), 20u);
    EXPECT_EQ(mine->Threads(), std::vector<std::thread::id>(10, std::this_thread::get_id()));
}

TEST_F(Callbacks, ThatNestEndlesslyAreRefusedBeforeTheStackOverflows) {
    const sp<Bouncer> mine = new Bouncer;
    const sp<IBouncer> theirs = mService->bouncer();
    EXPECT_GE(theirs->bounce(100000, mine).withDefault(0), 1000000u);
    EXPECT_EQ(Echo(mService, "still here"), "still here");
}

TEST_F(Calls, ANullResultCallbackIsRefusedWithoutCalling) {
    const Return<void> refused = mService->echo("text", nullptr);
    EXPECT_FALSE(refused.isOk());
    EXPECT_NE(refused.description().find("EX_ILLEGAL_ARGUMENT"), std::string::npos) << refused.description();
    const sp<Workshop> local = new Workshop;
    EXPECT_THROW(local->echo("text", nullptr).isOk(), std::bad_function_call);
}

TEST_F(Calls, TheAnswerArrivesWithTheCallbackNotWithTheEndOfTheMethod) {
    std::string answer;
    EXPECT_TRUE(mService->answerThenHold([&](const auto& reply) { answer = reply; }).isOk());
    EXPECT_EQ(answer, "answered");
    EXPECT_TRUE(WaitFor([&] { return Holding(mService) == 1; }));
    EXPECT_TRUE(mService->letGo().isOk());
    EXPECT_TRUE(WaitFor([&] { return Holding(mService) == 0; }));
}

// One thread of the service, which reads the call and serves it, and the caller, which reads its reply. Not always: a
// call that comes before the thread of the last one waits again goes to the pool.
TEST_F(Calls, WakeTwoThreads) {
    constexpr long kCalls = 1000;
    const auto call = [&] { EXPECT_EQ(mService->nextColour(Colour::GREEN).withDefault(Colour::RED), Colour::BLUE); };
    for (int i = 0; i < 20; ++i) call();  // which start the threads
    const long before = WaitsOf(getpid()) + WaitsOf(mPeer.Pid());
    for (long i = 0; i < kCalls; ++i) call();
    // A third and a fourth thread would make 4 * kCalls.
    EXPECT_LT(WaitsOf(getpid()) + WaitsOf(mPeer.Pid()) - before, 3 * kCalls + kCalls / 2);
}

TEST_F(Calls, ManyThreadsShareOneConnection) {
    std::atomic<int> right{0};
    {
        std::vector<std::unique_ptr<Caller>> callers;
        for (int i = 0; i < 8; ++i) {
            callers.push_back(std::make_unique<Caller>([&, i] {
                for (int j = 0; j < 200; ++j) {
                    const std::string text = std::to_string(i) + "." + std::to_string(j);
                    right += Echo(mService, text) == text;
                }
            }));
        }
    }
    EXPECT_EQ(right, 8 * 200);
}

TEST_F(OnewayCalls, RunInOrder) {
    for (uint32_t i = 0; i < 5000; ++i) ASSERT_TRUE(mService->post(i).isOk());
    EXPECT_TRUE(WaitFor([&] { return Posted(mService).size() == 5000; }));
    EXPECT_EQ(Posted(mService), CountUp(5000));
}

TEST_F(OnewayCalls, HaveNoCaller) {
    ASSERT_TRUE(mService->postCaller().isOk());
    EXPECT_TRUE(WaitFor([&] { return Posted(mService).size() == 1; }));
    EXPECT_EQ(Posted(mService)[0], 0u);
}

TEST_F(OnewayCalls, ReturnImmediatelyAndRunOneAtATime) {
    for (uint32_t i = 0; i < 3; ++i) ASSERT_TRUE(mService->postSlowly(i).isOk());
    // The second thread of the service is free all the time, but only one of the three runs.
    EXPECT_TRUE(WaitFor([&] { return Holding(mService) == 1; }));
    EXPECT_EQ(Posted(mService), CountUp(0));
    for (uint32_t done = 1; done <= 3; ++done) {
        EXPECT_LE(Holding(mService), 1u);
        EXPECT_TRUE(mService->letGo().isOk());
        EXPECT_TRUE(WaitFor([&] { return Posted(mService).size() == done; }));
    }
    EXPECT_EQ(Posted(mService), CountUp(3));
}

TEST_F(OnewayCalls, NeverRunOnAWaitingThread) {
    const sp<Listener> listener = new Listener;
    ASSERT_TRUE(mService->setListener(listener).withDefault(false));
    EXPECT_EQ(mService->emit(100).withDefault(0), 100u);
    EXPECT_TRUE(WaitFor([&] { return listener->Events().size() == 100; }));
    EXPECT_EQ(listener->Events(), CountUp(100));
    for (const std::thread::id thread : listener->Threads()) EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(OnewayCalls, AreRefusedByTheStubWhenTheFlagIsWrong) {
    const sp<Listener> listener = new Listener;
    ASSERT_TRUE(mService->setListener(listener).withDefault(false));
    constexpr uint32_t kPost = 15;
    EXPECT_EQ(CallByHand(mService, IWorkshop::descriptor, kPost, 0).transactionError(), ::android::UNKNOWN_ERROR);
    EXPECT_EQ(Posted(mService), CountUp(0));
    // In the opposite case, the refusal is not reported, and nothing runs.
    constexpr uint32_t kSetListener = 9;
    EXPECT_EQ(CallByHand(mService, IWorkshop::descriptor, kSetListener, IBinder::FLAG_ONEWAY).transactionError(),
              ::android::OK);
    EXPECT_TRUE(mService->isListener(listener).withDefault(false));
}

TEST_F(OnewayCalls, ToADeadObjectFail) {
    mPeer.Kill();
    EXPECT_TRUE(WaitFor([&] { return mService->post(1).isDeadObject(); }));
}

TEST_F(OnewayCalls, ToAStoppedClientAreEventuallyRefusedAndTheServiceSurvives) {
    Peer client({"listen", "default"});
    client.Signal(SIGSTOP);
    // More than any buffer holds.
    EXPECT_LT(mService->emit(200000).withDefault(200000), 200000u);
    EXPECT_EQ(Echo(mService, "alive"), "alive");
    client.Kill();
    EXPECT_TRUE(WaitFor([&] { return mService->emit(1).withDefault(1) == 0; }));
}

TEST_F(TransportErrors, AnUnknownMethodIsAnUnknownTransaction) {
    const Status status = CallByHand(mService, IWorkshop::descriptor, 12345, 0);
    EXPECT_EQ(status.transactionError(), ::android::UNKNOWN_TRANSACTION);
    EXPECT_EQ(status.exceptionCode(), Status::EX_TRANSACTION_FAILED);
}

TEST_F(TransportErrors, ACallForAnotherInterfaceIsABadType) {
    EXPECT_EQ(CallByHand(mService, IListener::descriptor, 1, 0).transactionError(), ::android::BAD_TYPE);
    EXPECT_EQ(Echo(mService, "alive"), "alive");
}

TEST_F(TransportErrors, ADeadObjectIsDistinguished) {
    mPeer.Kill();
    EXPECT_TRUE(WaitFor([&] { return mService->ping().isDeadObject(); }));
    const Return<int32_t> pid = mService->pid();
    EXPECT_FALSE(pid.isOk());
    EXPECT_TRUE(pid.isDeadObject());
    EXPECT_NE(pid.description().find("DEAD_OBJECT"), std::string::npos) << pid.description();
}

TEST_F(TransportErrors, AMessageAboveOneMebibyteMinusEightKibibytesFails) {
    constexpr size_t kLimit = 1024 * 1024 - 8 * 1024;
    EXPECT_EQ(Echo(mService, std::string(kLimit - 500, 'x')), std::string(kLimit - 500, 'x'));
    for (const size_t size : {kLimit, kLimit * 3}) {
        const std::string text(size, 'x');
        bool called = false;
        const Return<void> echoed = mService->echo(text, [&](const hidl_string&) { called = true; });
        EXPECT_FALSE(echoed.isOk());
        EXPECT_NE(echoed.description().find("FAILED_TRANSACTION"), std::string::npos) << echoed.description();
        EXPECT_FALSE(called);
    }
    EXPECT_EQ(Echo(mService, "alive"), "alive");
}

TEST_F(TransportErrors, AnAnswerAboveTheLimitFailsAtTheCaller) {
    // Fits as an argument, but the reply has a title and the names twice.
    const std::string text(700 * 1024, 'x');
    Item item = MakeItem(1);
    item.name = text;
    bool called = false;
    const Return<void> summary = mService->summary({item}, "title", [&](auto&&...) { called = true; });
    EXPECT_FALSE(summary.isOk());
    EXPECT_NE(summary.description().find("FAILED_TRANSACTION"), std::string::npos) << summary.description();
    EXPECT_FALSE(called);
    EXPECT_EQ(Echo(mService, "alive"), "alive");
}

TEST_F(TransportErrors, AnObjectOfAThirdProcessIsRefused) {
    Peer third({"serve", "third"});
    const sp<IWorkshop> thirds = IWorkshop::getService("third");
    const sp<Listener> listener = new Listener;
    ASSERT_TRUE(thirds->setListener(listener).withDefault(false));
    const sp<IBouncer> bouncer = thirds->bouncer();
    const Return<uint32_t> bounced = static_cast<sp<IBouncer>>(mService->bouncer())->bounce(1, bouncer);
    EXPECT_FALSE(bounced.isOk());
    EXPECT_NE(bounced.description().find("INVALID_OPERATION"), std::string::npos) << bounced.description();
    EXPECT_EQ(Echo(mService, "alive"), "alive");
}

TEST(ThreadPools, HaveOneThreadWhenNotConfigured) {
    const ScratchDirectory scratch;
    const sp<Workshop> own = new Workshop;
    ASSERT_EQ(own->registerAsService("own"), ::android::OK);
    Peer first({"hold", "own"});
    EXPECT_TRUE(WaitFor([&] { return Holding(own) == 1; }));
    // The second lookup is answered, but its first call waits for the thread.
    ChildProcess second({HOST_TEST_PEER, "hold", "own"});
    EXPECT_TRUE(own->letGo().isOk());
    EXPECT_EQ(first.WaitForExit(), 0);
    EXPECT_TRUE(WaitFor([&] { return Holding(own) == 1; }));
    EXPECT_TRUE(own->letGo().isOk());
    EXPECT_EQ(second.WaitForExit(), 0);
    EXPECT_EQ(own->MostHolding(), 1u);
}

TEST(ThreadPools, HaveAsManyThreadsAsConfigured) {
    const ScratchDirectory scratch;
    Peer peer({"serve", "default", "3"});
    const sp<IWorkshop> service = IWorkshop::getService();
    Caller first([&] { EXPECT_TRUE(service->hold().isOk()); });
    Caller second([&] { EXPECT_TRUE(service->hold().isOk()); });
    EXPECT_TRUE(WaitFor([&] { return Holding(service) == 2; }));
    EXPECT_TRUE(service->letGo().isOk());
    EXPECT_TRUE(service->letGo().isOk());
}

TEST(ThreadPools, ThatTheCallerJoinsServeNothingBefore) {
    const ScratchDirectory scratch;
    Peer peer({"serve-by-joining", "default"});
    // Finding the service queries its interfaces, which needs the thread.
    Caller caller([&] { EXPECT_EQ(Echo(IWorkshop::getService(), "text"), "text"); });
    EXPECT_TRUE(WaitFor([] { return HasThread("hidl-reader"); }));
    peer.Write("join\n");
    caller.Join();
    EXPECT_TRUE(peer.WaitForOutput("asked for its interfaces"));
    EXPECT_LT(peer.Output().find("joining"), peer.Output().find("asked for its interfaces")) << peer.Output();
}

TEST(ThreadPools, OfAProcessThatOnlyCallsServeNestedCallbacksWithoutAThread) {
    const ScratchDirectory scratch;
    Peer peer({"serve", "default"});
    const sp<IWorkshop> service = IWorkshop::getService();
    const sp<Bouncer> mine = new Bouncer;
    // One thread on each side, without a deadlock.
    EXPECT_EQ(static_cast<sp<IBouncer>>(service->bouncer())->bounce(20, mine).withDefault(0), 20u);
}

}  // namespace hbbtv::test
