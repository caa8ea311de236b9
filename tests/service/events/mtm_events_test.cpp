// From the platform's command to the browser that is registered, and what the platform is answered whatever becomes of
// the browser.

#include <chrono>
#include <functional>

#include "Mtm.h"
#include "MtmCallback.h"
#include "one_client.h"
#include "recording_browser.h"

namespace hbbtv::test {

namespace {

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::Mtm;
using vantorel::hardware::hbbtv::implementation::MtmCallback;

constexpr char kPing[] = R"({"type": 0, "method": 34})";
constexpr char kPinged[] = "{\n\t\"ret\" : 0,\n\t\"status\" : -13\n}\n";
constexpr char kFailed[] = "{\n\t\"ret\" : -1\n}\n";
constexpr char kNobody[] = "null\n";

class MtmCommands : public ServiceEvents<Mtm, RecordingBrowser> {
  protected:
    static constexpr char kEvent[] = R"({"type": 0, "method": 24, "tabid": 5})";
    static constexpr char kCall[] = "DestroyApp 5";

    MtmCommands() : ServiceEvents("[hidl_mtm_wrapper_client]") {}

    // A browser that hangs is let go, so that nothing waits for it when the test ends.
    ~MtmCommands() override { mClient->Release(); }

    void Register(const sp<Client>& browser) { ASSERT_TRUE(mService->RegisterCallback(browser).isOk()); }
    void RefuseNull() { Register(nullptr); }
    void Unregister() { ASSERT_TRUE(mService->UnregisterCallback().isOk()); }

    // The adaptor calls a bridge with little patience in place of the service's own.
    void BeImpatient() { TolmMtmAdaptorIpc::GetInstance()->RegisterCallback(&mImpatient); }

    MtmCallback mBridge{Mtm::RegisteredClient()};
    MtmCallback mImpatient{Mtm::RegisteredClient(), std::chrono::milliseconds(100)};
};

INSTANTIATE_TYPED_TEST_SUITE_P(MtmClient, OneClient, MtmCommands);
INSTANTIATE_TYPED_TEST_SUITE_P(MtmClient, OneClientOfAService, MtmCommands);
INSTANTIATE_TYPED_TEST_SUITE_P(MtmClient, OneClientThatCanUnregister, MtmCommands);

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

TEST_P(BridgeOperation, CallsTheBrowserAndReturnsItsResults) {
    Register(mClient);
    EXPECT_EQ(GetParam().run(mBridge), std::string("0") + GetParam().result);
    EXPECT_THAT(mClient->Calls(), ElementsAre(GetParam().call));
    mClient->status = 6;
    EXPECT_EQ(GetParam().run(mBridge), std::string("6") + GetParam().before);
}

TEST_P(BridgeOperation, FailsWithoutABrowser) {
    EXPECT_EQ(GetParam().run(mBridge), Failure());
    Register(mClient);
    Unregister();
    EXPECT_EQ(GetParam().run(mBridge), Failure());
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_P(BridgeOperation, FailsWithoutAService) {
    Register(mClient);
    mService.clear();
    EXPECT_EQ(GetParam().run(mBridge), Failure());
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_P(BridgeOperation, FailsWhenTheBrowserIsNoLongerWatched) {
    Register(mClient);
    mService->StopMonitor(mClient);
    EXPECT_EQ(GetParam().run(mBridge), Failure());
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    mService->StartMonitor(mClient);
    EXPECT_EQ(GetParam().run(mBridge), std::string("0") + GetParam().result);
}

TEST_P(BridgeOperation, FailsWhenTheBrowserHasJustDied) {
    Register(mClient);
    mClient->dead = true;
    EXPECT_EQ(GetParam().run(mBridge), Failure());
}

TEST_P(BridgeOperation, FailsWhenTheBrowserCallsNoResultCallback) {
    Register(mClient);
    mClient->silent = true;
    EXPECT_EQ(GetParam().run(mBridge), HasResult() ? Failure() : "0");
    EXPECT_THAT(mClient->Calls(), ElementsAre(GetParam().call));
}

TEST_P(BridgeOperation, FailsWhenTheBrowserDoesNotReturn) {
    Register(mClient);
    mClient->Hang();
    EXPECT_EQ(GetParam().run(mImpatient), Failure());
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[hidl_base]", "the client does not return"), 1) << mLog.Text();
    // It is busy: it is not called again, and the caller does not wait.
    EXPECT_EQ(GetParam().run(mImpatient), Failure());
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[hidl_base]", "the client does not return"), 1);
    // The thread of the first call may start late.
    EXPECT_TRUE(WaitFor([&] { return !mClient->Calls().empty(); }));
    EXPECT_THAT(mClient->Calls(), ElementsAre(GetParam().call));
    // Once it has returned, it is asked again.
    mClient->Release();
    EXPECT_TRUE(WaitFor([&] { return GetParam().run(mImpatient) == std::string("0") + GetParam().result; }));
}

INSTANTIATE_TEST_SUITE_P(Each, BridgeOperation, testing::ValuesIn(kOperations),
                         [](const auto& operation) { return std::string(operation.param.name); });

TEST_F(MtmCommands, ReachTheBrowserFromThePlatform) {
    Register(mClient);
    Send(R"({"type": 0, "method": 21, "tabid": 5, "isBR": true})");
    Send(R"({"type": 0, "method": 30, "tabid": 5, "url": "u", "boundaries": ["a", "b"]})");
    Send(kEvent);
    EXPECT_EQ(Ask(R"({"type": 0, "method": 23, "url": "u"})"), "{\n\t\"ret\" : 0,\n\t\"tabid\" : -11\n}\n");
    EXPECT_EQ(Ask(R"({"type": 0, "method": 28, "url": "u"})"), "{\n\t\"ret\" : 0,\n\t\"xmlFile\" : \"<a/>\"\n}\n");
    EXPECT_EQ(Ask(R"({"type": 0, "method": 32, "tabid": 5})"), "{\n\t\"render_id\" : -12,\n\t\"ret\" : 0\n}\n");
    EXPECT_EQ(Ask(kPing), kPinged);
    EXPECT_THAT(mClient->Calls(), ElementsAre("SetAppConfig 5 1", "LoadURLInTab 5 u 0 0  [a b]", "DestroyApp 5",
                                              "CreateApp u 0 0  []", "GetXmlFile u ", "GetRenderProcessId 5", "Ping"));
}

TEST_F(MtmCommands, GetNullBeforeAndAfterTheRegistration) {
    Unregister();
    EXPECT_EQ(Ask(kPing), kNobody);
    Register(mClient);
    EXPECT_EQ(Ask(kPing), kPinged);
    Unregister();
    EXPECT_EQ(Ask(kPing), kNobody);
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_mtm]", "callback is null"), 2);
    Register(mClient);
    EXPECT_EQ(Ask(kPing), kPinged);
}

TEST_F(MtmCommands, AreAnsweredWhenTheBrowserIsGoneFailsOrDoesNotReply) {
    Register(mClient);
    mClient->silent = true;
    EXPECT_EQ(Ask(kPing), kFailed);
    mClient->silent = false;
    mClient->status = 4;
    EXPECT_EQ(Ask(kPing), kFailed);
    mClient->status = 0;
    mClient->dead = true;
    EXPECT_EQ(Ask(kPing), kFailed);
    EXPECT_EQ(Ask(R"({"type": 0, "method": 28})"), "{\n\t\"ret\" : -1,\n\t\"xmlFile\" : \"\"\n}\n");
    mClient->dead = false;
    EXPECT_EQ(Ask(kPing), kPinged);
    mService->StopMonitor(mClient);
    EXPECT_EQ(Ask(kPing), kFailed);
}

TEST_F(MtmCommands, AreAnsweredWhenTheBrowserHangs) {
    Register(mClient);
    BeImpatient();
    mClient->Hang();
    Send(kEvent);
    for (int i = 0; i < 100; ++i) Send(kEvent);
    EXPECT_EQ(Ask(kPing), kFailed);
    EXPECT_EQ(Ask(R"({"type": 0, "method": 28})"), "{\n\t\"ret\" : -1,\n\t\"xmlFile\" : \"\"\n}\n");
    EXPECT_THAT(mClient->Calls(), ElementsAre("DestroyApp 5"));
}

TEST_F(MtmCommands, ReachTheNextBrowserAlthoughTheFirstHangs) {
    Register(mClient);
    BeImpatient();
    mClient->Hang();
    EXPECT_EQ(Ask(kPing), kFailed);
    const sp<Client> second = new Client;
    Register(second);
    BeImpatient();
    EXPECT_EQ(Ask(kPing), kPinged);
    EXPECT_THAT(second->Calls(), ElementsAre("Ping"));
}

TEST_F(MtmCommands, TakeNoMoreThanAFewThreadsForBrowsersThatHang) {
    std::vector<sp<Client>> browsers;
    MtmCallback bridge(Mtm::RegisteredClient(), std::chrono::milliseconds(1));
    for (int i = 0; i < 20; ++i) {
        browsers.emplace_back(new Client);
        browsers.back()->Hang();
        Register(browsers.back());
        EXPECT_EQ(bridge.DestroyApp(i), -1);
    }
    EXPECT_EQ(mLog.Count(ANDROID_LOG_ERROR, "[hidl_base]", "no thread for a call of the client"), 4) << mLog.Text();
    for (const auto& browser : browsers) browser->Release();
    Register(mClient);
    EXPECT_TRUE(WaitFor([&] { return mImpatient.DestroyApp(5) == 0; }));
}

// Its answer comes late, and goes nowhere.
TEST_F(MtmCommands, AreNotDisturbedByAnAnswerThatComesTooLate) {
    Register(mClient);
    mClient->Hang();
    {
        MtmCallback passing(Mtm::RegisteredClient(), std::chrono::milliseconds(10));
        std::string xmlFile = "before";
        EXPECT_EQ(passing.GetXmlFile("u", "i", xmlFile), -1);
        EXPECT_EQ(xmlFile, "before");
    }
    mClient->Release();
    EXPECT_EQ(Ask(kPing), kPinged);
}

TEST_F(MtmCommands, LetTheBrowserSendARequestBeforeItReturns) {
    Register(mClient);
    mClient->SetBeforeReturning([&] {
        EXPECT_EQ(static_cast<int32_t>(mService->OnTabCreated(3)), 0);
        mService->UnregisterCallback();
    });
    EXPECT_EQ(Ask(kPing), kPinged);
    EXPECT_EQ(mPlatform.Frames().size(), 1u);
    EXPECT_EQ(Ask(kPing), kNobody);
}

TEST_F(MtmCommands, AreRefusedAfterTheDeathOfTheBrowser) {
    Register(mClient);
    mClient->Die();
    EXPECT_EQ(Ask(kPing), kNobody);
    EXPECT_EQ(mBridge.DestroyApp(5), -1);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    Register(mClient);
    EXPECT_EQ(Ask(kPing), kPinged);
}

TEST_F(MtmCommands, WithoutAnAdaptorNothingIsRegisteredOrUnregistered) {
    Register(mClient);
    TolmMtmAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    const sp<Client> second = new Client;
    Register(second);
    EXPECT_THAT(second->Linked(), IsEmpty());
    Unregister();
    EXPECT_EQ(mClient->Linked().size(), 1u);
    EXPECT_EQ(mBridge.DestroyApp(5), 0);
    EXPECT_THAT(mClient->Calls(), ElementsAre("DestroyApp 5"));
}

}  // namespace hbbtv::test
