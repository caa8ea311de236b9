// From the platform's command to the browser that is registered, and what the platform is answered whatever becomes of
// the browser. The service runs in this process, the platform is at the other end of real sockets.

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "Mtm.h"
#include "MtmCallback.h"
#include "log_capture.h"
#include "method_rows.h"
#include "recording_mtm_callback.h"

namespace hbbtv::test {

namespace {

using android::sp;
using android::wp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::Mtm;
using vantorel::hardware::hbbtv::implementation::MtmCallback;
using IBase = android::hidl::base::V1_0::IBase;

constexpr char kTag[] = "[hidl_mtm_wrapper_client]";
constexpr char kCommand[] = R"({"type": 0, "method": 24, "tabid": 5})";
constexpr char kPing[] = R"({"type": 0, "method": 34})";
constexpr char kPinged[] = "{\n\t\"ret\" : 0,\n\t\"status\" : -13\n}\n";
constexpr char kFailed[] = "{\n\t\"ret\" : -1\n}\n";
constexpr char kNobody[] = "null\n";
constexpr char kDied[] = "ClientDeathRecipient::serviceDied - client died";
constexpr char kStarted[] = "ClientDeathRecipient::StartMonitor";
constexpr char kStopped[] = "ClientDeathRecipient::StopMonitor";

class MtmCommands : public testing::Test {
  protected:
    // A browser that hangs is let go, so that nothing waits for it when the test ends.
    ~MtmCommands() override { mBrowser->Release(); }

    void Register(const sp<RecordingMtmCallback>& browser) { ASSERT_TRUE(mService->RegisterCallback(browser).isOk()); }
    void Unregister() { ASSERT_TRUE(mService->UnregisterCallback().isOk()); }

    // The adaptor calls a bridge with little patience in place of the service's own.
    void BeImpatient() { TolmMtmAdaptorIpc::GetInstance()->RegisterCallback(&mImpatient); }

    // The reply to a command that asks for one.
    std::string Ask(const std::string& json) {
        RawConnection connection = RawConnection::To(mDirectory / "service_hbbtv_to_mtm");
        EXPECT_TRUE(connection.Write(FrameBytes(kRequest, 1, json)));
        const auto reply = connection.ReadFrame();
        return reply ? reply->payload : "no reply";
    }

    // A one-way command, until it has been handled.
    void Send(const std::string& json) {
        RawConnection connection = RawConnection::To(mDirectory / "service_hbbtv_to_mtm");
        EXPECT_TRUE(connection.Write(FrameBytes(kOneWay, 1, json)));
        EXPECT_TRUE(connection.Write(FrameBytes(kRequest, 1, "nonsense")));
        EXPECT_TRUE(connection.ReadFrame().has_value());
    }

    int Logged(int priority, const char* message) const { return mLog.Count(priority, kTag, message); }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    MtmCallback mBridge;
    MtmCallback mImpatient{std::chrono::milliseconds(100)};
    sp<Mtm> mService = new Mtm;
    const sp<RecordingMtmCallback> mBrowser = new RecordingMtmCallback;
};

// What an operation of the bridge gives: "status", or "status result".
struct Operation {
    const char* name;
    std::function<std::string(MtmCallback&)> run;
    const char* call;
    const char* result;  // on success
    const char* before;  // what stays in the result on failure
};

template <typename Run>
auto Plain(Run run) {
    return [run](MtmCallback& bridge) { return std::to_string(run(bridge)); };
}

std::string StatusAnd(int status, const std::string& result) {
    return std::to_string(status) + " " + result;
}

const Operation kOperations[] = {
    {"SetAppConfig", Plain([](auto& b) { return b.SetAppConfig(-5, true); }), "SetAppConfig -5 1", "", ""},
    {"SetDvbOrigin", Plain([](auto& b) { return b.SetDvbOrigin(-5, "dvb://1.2.3"); }), "SetDvbOrigin -5 dvb://1.2.3",
     "", ""},
    {"CreateApp",
     [](MtmCallback& b) {
         int tabId = 77;
         const int status = b.CreateApp("u", true, false, "m", {"a", "b"}, tabId);
         return StatusAnd(status, std::to_string(tabId));
     },
     "CreateApp u 1 0 m [a b]", " -11", " 77"},
    {"DestroyApp", Plain([](auto& b) { return b.DestroyApp(-5); }), "DestroyApp -5", "", ""},
    {"DestroyAllApps", Plain([](auto& b) { return b.DestroyAllApps(); }), "DestroyAllApps", "", ""},
    {"ShowHideTab", Plain([](auto& b) { return b.ShowHideTab(-5, true, false); }), "ShowHideTab -5 1 0", "", ""},
    {"GetXmlFile",
     [](MtmCallback& b) {
         std::string xmlFile = "before";
         const int status = b.GetXmlFile("u", "i", xmlFile);
         return StatusAnd(status, xmlFile);
     },
     "GetXmlFile u i", " <a/>", " before"},
    {"LoadURLInTab", Plain([](auto& b) { return b.LoadURLInTab(-5, "u", false, true, "m", {}); }),
     "LoadURLInTab -5 u 0 1 m []", "", ""},
    {"GetRenderProcessId",
     [](MtmCallback& b) {
         int renderId = 77;
         const int status = b.GetRenderProcessId(-5, renderId);
         return StatusAnd(status, std::to_string(renderId));
     },
     "GetRenderProcessId -5", " -12", " 77"},
    {"SendKey", Plain([](auto& b) { return b.SendKey(-415, 1, -2); }), "SendKey -415 1 -2", "", ""},
    {"Ping",
     [](MtmCallback& b) {
         int browserStatus = 77;
         const int status = b.Ping(&browserStatus);
         return StatusAnd(status, std::to_string(browserStatus));
     },
     "Ping", " -13", " 77"},
};

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

class BridgeOperation : public MtmCommands, public testing::WithParamInterface<Operation> {
  protected:
    std::string Failure() const { return std::string("-1") + GetParam().before; }
    bool HasResult() const { return *GetParam().before != '\0'; }
};

}  // namespace

TEST_P(BridgeOperation, CallsTheBrowserAndGivesWhatItGives) {
    Register(mBrowser);
    EXPECT_EQ(std::string("0") + GetParam().result, GetParam().run(mBridge));
    EXPECT_THAT(mBrowser->Calls(), ElementsAre(GetParam().call));
    mBrowser->status = 6;
    EXPECT_EQ(std::string("6") + GetParam().before, GetParam().run(mBridge));
}

TEST_P(BridgeOperation, FailsWithoutABrowser) {
    EXPECT_EQ(Failure(), GetParam().run(mBridge));
    Register(mBrowser);
    Unregister();
    EXPECT_EQ(Failure(), GetParam().run(mBridge));
    EXPECT_THAT(mBrowser->Calls(), IsEmpty());
}

TEST_P(BridgeOperation, FailsWithoutAService) {
    Register(mBrowser);
    mService.clear();
    EXPECT_EQ(Failure(), GetParam().run(mBridge));
    EXPECT_THAT(mBrowser->Calls(), IsEmpty());
}

TEST_P(BridgeOperation, FailsWhenTheBrowserIsNoLongerWatched) {
    Register(mBrowser);
    mService->StopMonitor(mBrowser);
    EXPECT_EQ(Failure(), GetParam().run(mBridge));
    EXPECT_THAT(mBrowser->Calls(), IsEmpty());
    mService->StartMonitor(mBrowser);
    EXPECT_EQ(std::string("0") + GetParam().result, GetParam().run(mBridge));
}

TEST_P(BridgeOperation, FailsWhenTheBrowserHasJustDied) {
    Register(mBrowser);
    mBrowser->dead = true;
    EXPECT_EQ(Failure(), GetParam().run(mBridge));
}

TEST_P(BridgeOperation, FailsWhenTheBrowserCallsNoResultCallback) {
    Register(mBrowser);
    mBrowser->silent = true;
    EXPECT_EQ(HasResult() ? Failure() : "0", GetParam().run(mBridge));
    EXPECT_THAT(mBrowser->Calls(), ElementsAre(GetParam().call));
}

TEST_P(BridgeOperation, FailsWhenTheBrowserDoesNotReturn) {
    Register(mBrowser);
    mBrowser->Hang();
    EXPECT_EQ(Failure(), GetParam().run(mImpatient));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_WARN, "[hidl_base]", "the client does not return")) << mLog.Text();
    // It has its hands full: nothing more is asked of it, and nobody waits.
    EXPECT_EQ(Failure(), GetParam().run(mImpatient));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_WARN, "[hidl_base]", "the client does not return"));
    EXPECT_THAT(mBrowser->Calls(), ElementsAre(GetParam().call));
    // Once it has returned, it is asked again.
    mBrowser->Release();
    EXPECT_TRUE(WaitFor([&] { return GetParam().run(mImpatient) == std::string("0") + GetParam().result; }));
}

INSTANTIATE_TEST_SUITE_P(Each, BridgeOperation, testing::ValuesIn(kOperations),
                         [](const auto& operation) { return std::string(operation.param.name); });

TEST_F(MtmCommands, ReachTheBrowserFromThePlatform) {
    Register(mBrowser);
    Send(R"({"type": 0, "method": 21, "tabid": 5, "isBR": true})");
    Send(R"({"type": 0, "method": 30, "tabid": 5, "url": "u", "boundaries": ["a", "b"]})");
    Send(kCommand);
    EXPECT_EQ("{\n\t\"ret\" : 0,\n\t\"tabid\" : -11\n}\n", Ask(R"({"type": 0, "method": 23, "url": "u"})"));
    EXPECT_EQ("{\n\t\"ret\" : 0,\n\t\"xmlFile\" : \"<a/>\"\n}\n", Ask(R"({"type": 0, "method": 28, "url": "u"})"));
    EXPECT_EQ("{\n\t\"render_id\" : -12,\n\t\"ret\" : 0\n}\n", Ask(R"({"type": 0, "method": 32, "tabid": 5})"));
    EXPECT_EQ(kPinged, Ask(kPing));
    EXPECT_THAT(mBrowser->Calls(), ElementsAre("SetAppConfig 5 1", "LoadURLInTab 5 u 0 0  [a b]", "DestroyApp 5",
                                               "CreateApp u 0 0  []", "GetXmlFile u ", "GetRenderProcessId 5", "Ping"));
}

TEST_F(MtmCommands, GetNullBeforeAndAfterTheRegistration) {
    Unregister();
    EXPECT_EQ(kNobody, Ask(kPing));
    Register(mBrowser);
    EXPECT_EQ(kPinged, Ask(kPing));
    Unregister();
    EXPECT_EQ(kNobody, Ask(kPing));
    EXPECT_EQ(2, mLog.Count(ANDROID_LOG_WARN, "[ipc_mtm]", "callback is null"));
    Register(mBrowser);
    EXPECT_EQ(kPinged, Ask(kPing));
}

TEST_F(MtmCommands, AreAnsweredWhenTheBrowserIsGoneFailsOrKeepsSilent) {
    Register(mBrowser);
    mBrowser->silent = true;
    EXPECT_EQ(kFailed, Ask(kPing));
    mBrowser->silent = false;
    mBrowser->status = 4;
    EXPECT_EQ(kFailed, Ask(kPing));
    mBrowser->status = 0;
    mBrowser->dead = true;
    EXPECT_EQ(kFailed, Ask(kPing));
    EXPECT_EQ("{\n\t\"ret\" : -1,\n\t\"xmlFile\" : \"\"\n}\n", Ask(R"({"type": 0, "method": 28})"));
    mBrowser->dead = false;
    EXPECT_EQ(kPinged, Ask(kPing));
    mService->StopMonitor(mBrowser);
    EXPECT_EQ(kFailed, Ask(kPing));
}

TEST_F(MtmCommands, AreAnsweredWhenTheBrowserHangs) {
    Register(mBrowser);
    BeImpatient();
    mBrowser->Hang();
    Send(kCommand);
    for (int i = 0; i < 100; ++i) Send(kCommand);
    EXPECT_EQ(kFailed, Ask(kPing));
    EXPECT_EQ("{\n\t\"ret\" : -1,\n\t\"xmlFile\" : \"\"\n}\n", Ask(R"({"type": 0, "method": 28})"));
    EXPECT_THAT(mBrowser->Calls(), ElementsAre("DestroyApp 5"));
}

TEST_F(MtmCommands, ReachTheNextBrowserAlthoughTheFirstHangs) {
    Register(mBrowser);
    BeImpatient();
    mBrowser->Hang();
    EXPECT_EQ(kFailed, Ask(kPing));
    const sp<RecordingMtmCallback> second = new RecordingMtmCallback;
    Register(second);
    BeImpatient();
    EXPECT_EQ(kPinged, Ask(kPing));
    EXPECT_THAT(second->Calls(), ElementsAre("Ping"));
}

TEST_F(MtmCommands, TakeNoMoreThanAFewThreadsForBrowsersThatHang) {
    std::vector<sp<RecordingMtmCallback>> browsers;
    MtmCallback bridge(std::chrono::milliseconds(1));
    for (int i = 0; i < 20; ++i) {
        browsers.emplace_back(new RecordingMtmCallback);
        browsers.back()->Hang();
        Register(browsers.back());
        EXPECT_EQ(-1, bridge.DestroyApp(i));
    }
    EXPECT_EQ(4, mLog.Count(ANDROID_LOG_ERROR, "[hidl_base]", "no thread for a call of the client")) << mLog.Text();
    for (const auto& browser : browsers) browser->Release();
    Register(mBrowser);
    EXPECT_TRUE(WaitFor([&] { return mImpatient.DestroyApp(5) == 0; }));
}

// Its answer comes late, and goes nowhere.
TEST_F(MtmCommands, AreNotDisturbedByAnAnswerThatComesTooLate) {
    Register(mBrowser);
    mBrowser->Hang();
    {
        MtmCallback passing(std::chrono::milliseconds(10));
        std::string xmlFile = "before";
        EXPECT_EQ(-1, passing.GetXmlFile("u", "i", xmlFile));
        EXPECT_EQ("before", xmlFile);
    }
    mBrowser->Release();
    EXPECT_EQ(kPinged, Ask(kPing));
}

TEST_F(MtmCommands, LetTheBrowserTellThePlatformSomethingBeforeItReturns) {
    const FakePlatform platform("service_mtm_to_hbbtv", R"({"ret": 0})");
    Register(mBrowser);
    mBrowser->SetBeforeReturning([&] {
        EXPECT_EQ(0, static_cast<int32_t>(mService->OnTabCreated(3)));
        mService->UnregisterCallback();
    });
    EXPECT_EQ(kPinged, Ask(kPing));
    EXPECT_EQ(1u, platform.Frames().size());
    EXPECT_EQ(kNobody, Ask(kPing));
}

TEST_F(MtmCommands, RegistrationWatchesTheBrowserUntilItIsTakenBack) {
    Register(mBrowser);
    EXPECT_EQ(1u, mBrowser->Linked().size());
    EXPECT_EQ(0u, mBrowser->Cookie());
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, kStarted));
    EXPECT_EQ(0, Logged(ANDROID_LOG_INFO, kStopped));
    Unregister();
    EXPECT_THAT(mBrowser->Linked(), IsEmpty());
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, kStopped));
    EXPECT_EQ(0, Logged(ANDROID_LOG_ERROR, "cb is null"));
}

TEST_F(MtmCommands, TakingBackWhatWasNotRegisteredSaysSo) {
    Unregister();
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, kStopped));
    EXPECT_EQ(1, Logged(ANDROID_LOG_ERROR, "cb is null"));
}

TEST_F(MtmCommands, ANullCallbackChangesNothing) {
    Register(mBrowser);
    mLog.Clear();
    Register(nullptr);
    EXPECT_EQ(0, Logged(ANDROID_LOG_INFO, kStarted));
    EXPECT_EQ(1, Logged(ANDROID_LOG_ERROR, "cb is null"));
    EXPECT_EQ(1u, mBrowser->Linked().size());
    EXPECT_EQ(kPinged, Ask(kPing));
}

TEST_F(MtmCommands, ASecondRegistrationReplacesTheFirst) {
    const sp<RecordingMtmCallback> second = new RecordingMtmCallback;
    Register(mBrowser);
    Register(second);
    EXPECT_EQ(1u, second->Linked().size());
    EXPECT_EQ(kPinged, Ask(kPing));
    EXPECT_THAT(mBrowser->Calls(), IsEmpty());
    EXPECT_THAT(second->Calls(), ElementsAre("Ping"));
}

TEST_F(MtmCommands, AReplacedBrowserIsNotKept) {
    sp<RecordingMtmCallback> first = new RecordingMtmCallback;
    const wp<RecordingMtmCallback> watched = first;
    Register(first);
    EXPECT_EQ(0, mBridge.DestroyApp(1));
    first.clear();
    EXPECT_NE(nullptr, watched.promote().get());
    Register(mBrowser);
    EXPECT_TRUE(WaitFor([&] { return watched.promote() == nullptr; }));
}

TEST_F(MtmCommands, AreRefusedAfterTheDeathOfTheBrowser) {
    Register(mBrowser);
    mLog.Clear();
    mBrowser->Die();
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, kDied));
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, kStopped));
    EXPECT_EQ(0, Logged(ANDROID_LOG_ERROR, "cb is null"));
    EXPECT_THAT(mBrowser->Linked(), IsEmpty());
    EXPECT_EQ(kNobody, Ask(kPing));
    EXPECT_EQ(-1, mBridge.DestroyApp(5));
    EXPECT_THAT(mBrowser->Calls(), IsEmpty());
    Register(mBrowser);
    EXPECT_EQ(kPinged, Ask(kPing));
}

TEST_F(MtmCommands, TheLateDeathNoticeOfAReplacedBrowserLeavesItsSuccessorAlone) {
    const sp<RecordingMtmCallback> second = new RecordingMtmCallback;
    Register(mBrowser);
    const auto recipient = mBrowser->Linked().at(0);
    Register(second);
    recipient->serviceDied(0, wp<IBase>(mBrowser.get()));
    EXPECT_EQ(0, Logged(ANDROID_LOG_INFO, kDied));
    EXPECT_EQ(kPinged, Ask(kPing));
    EXPECT_THAT(second->Calls(), ElementsAre("Ping"));
}

TEST_F(MtmCommands, WithoutAnAdaptorNothingIsRegisteredOrTakenBack) {
    Register(mBrowser);
    TolmMtmAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    const sp<RecordingMtmCallback> second = new RecordingMtmCallback;
    Register(second);
    EXPECT_THAT(second->Linked(), IsEmpty());
    Unregister();
    EXPECT_EQ(1u, mBrowser->Linked().size());
    EXPECT_EQ(0, mBridge.DestroyApp(5));
    EXPECT_THAT(mBrowser->Calls(), ElementsAre("DestroyApp 5"));
}

TEST_F(MtmCommands, RegistrationsAndDeathsBesideCommandsDoNotDisturbEachOther) {
    constexpr int kTurns = 200;
    std::thread registrations([this] {
        for (int i = 0; i < kTurns; ++i) {
            const sp<RecordingMtmCallback> browser = new RecordingMtmCallback;
            Register(browser);
            if (i % 2 == 0) browser->Die();
            if (i % 3 == 0) Unregister();
        }
    });
    TolmMtmAdaptorIpc::GetInstance();  // so that its socket is there
    for (int i = 0; i < kTurns; ++i) {
        Send(kCommand);
        const std::string reply = Ask(kPing);
        EXPECT_TRUE(reply == kPinged || reply == kFailed || reply == kNobody) << reply;
    }
    registrations.join();
    Register(mBrowser);
    EXPECT_EQ(kPinged, Ask(kPing));
    EXPECT_THAT(mBrowser->Calls(), ElementsAre("Ping"));
}

}  // namespace hbbtv::test
