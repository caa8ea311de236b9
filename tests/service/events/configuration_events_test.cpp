// From the platform's event to the clients of the configuration: forwarding, registrations and a client's death.

#include <IConfigurationCallbackListener.h>
#include <atomic>
#include <thread>

#include "Configuration.h"
#include "beside.h"
#include "ipc/src/plugin/tolm_configuration_adaptor_ipc.h"
#include "package/description.h"
#include "protocol_events.h"
#include "recording_client.h"
#include "service_events.h"

namespace hbbtv::test {

namespace {

using RecordingCallback = RecordingClient<vantorel::hardware::hbbtv::V1_0::IConfigurationCallback>;

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::Configuration;
using vantorel::hardware::hbbtv::implementation::TolmConfigurationCallback;

constexpr char kEvent[] = R"({"event": 8, "age": 16})";
constexpr char kCall[] = "onConfigurationEvent 8 0 0 '' '' '' 0 0 0 '' 16 0 0 0 0 0 0";
constexpr char kRegister[] = "{\n\t\"method\" : 33,\n\t\"type\" : 9\n}\n";
constexpr char kUnregister[] = "{\n\t\"method\" : 34,\n\t\"type\" : 9\n}\n";

class ConfigurationEvents : public ServiceEvents<Configuration, RecordingCallback> {
  protected:
    ConfigurationEvents() : ServiceEvents("[hidl_configuration_wrapper_server]") {}

    int Register(const sp<Client>& callback) { return mService->RegisterCallback(callback); }
    int Unregister(const sp<Client>& callback) { return mService->UnregisterCallback(callback); }

    const sp<Client> mSecond = new Client;
    const sp<Client> mThird = new Client;
};

}  // namespace

// The fields of the callback's struct are the members of all events, in their order.
TEST_F(ConfigurationEvents, OfEveryKindReachAllClients) {
    constexpr char kCallback[] = "IConfigurationCallback";
    EXPECT_EQ(Register(mClient), 0);
    EXPECT_EQ(Register(mSecond), -1);
    const auto& arguments = Package::Get().FindInterface(kCallback).Find("onConfigurationEvent")->arguments;
    auto field = arguments.at(1).type->fields.begin();
    std::vector<std::string> calls;
    for (const Json::Value& definition : UnderTest().Wire().protocol["events"]) {
        const ProtocolEvent event(definition["name"].asString());
        Json::Value call(Json::arrayValue);
        call.append(definition["code"]);
        for (const Json::Value& member : definition["members"]) {
            call[1][(field++)->name] = event.Values()[member["key"].asString()];
        }
        Send(event.Text());
        calls.push_back(CallLine(kCallback, "onConfigurationEvent", call));
    }
    EXPECT_EQ(field, arguments[1].type->fields.end());
    Send(R"({"event": 1})");
    Send(R"({"event": 15, "age": 16})");
    for (const char* code : {"1", "15"}) {
        calls.push_back("onConfigurationEvent " + std::string(code) + " 0 0 '' '' '' 0 0 0 '' 0 0 0 0 0 0 0");
    }
    EXPECT_EQ(mClient->Calls(), calls);
    EXPECT_EQ(mSecond->Calls(), calls);
}

TEST_F(ConfigurationEvents, OnlyTheFirstRegistrationAsksThePlatformAndReturnsItsStatus) {
    mPlatform.SetReply(R"({"ret": 6})");
    EXPECT_EQ(Register(mClient), 6);
    EXPECT_EQ(Register(mSecond), -1);
    EXPECT_EQ(Register(mThird), -1);
    EXPECT_THAT(Requests(), ElementsAre(kRegister));
    Send(kEvent);
    for (const sp<Client>& client : {mClient, mSecond, mThird}) EXPECT_THAT(client->Calls(), ElementsAre(kCall));
}

// Notes its name in a list that several clients share. Events come on one thread.
class NamedClient : public RecordingCallback {
  public:
    NamedClient(const char* name, std::string* called) : mName(name), mCalled(called) {}

    Json::Value Take(const char*, const char*, Json::Value) override {
        *mCalled += mName;
        return Json::Value(Json::arrayValue);
    }

  private:
    const char* const mName;
    std::string* const mCalled;
};

TEST_F(ConfigurationEvents, ReachTheClientsInTheOrderOfTheirRegistrations) {
    std::string called;
    const sp<Client> b = new NamedClient("b", &called);
    Register(new NamedClient("c", &called));
    Register(b);
    Register(new NamedClient("a", &called));
    Send(kEvent);
    EXPECT_EQ(called, "cba");
    Unregister(b);
    Register(b);
    Send(kEvent);
    EXPECT_EQ(called, "cbacab");
}

TEST_F(ConfigurationEvents, ReachAClientInTheOrderOfTheEvents) {
    EXPECT_EQ(Register(mClient), 0);
    Send(R"({"event": 4, "isSubEnabled": true})");
    Send(kEvent);
    Send(R"({"event": 7, "region": "DE"})");
    EXPECT_THAT(mClient->Calls(), ElementsAre("onConfigurationEvent 4 0 0 '' '' '' 1 0 0 '' 0 0 0 0 0 0 0", kCall,
                                              "onConfigurationEvent 7 0 0 '' '' '' 0 0 0 'DE' 0 0 0 0 0 0 0"));
}

TEST_F(ConfigurationEvents, AreDroppedSilentlyWithoutAClient) {
    TolmConfigurationCallback(8, {}, nullptr);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ConfigurationEvents, AreDroppedWhenTheServiceHasGone) {
    EXPECT_EQ(Register(mClient), 0);
    mService.clear();
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(ConfigurationEvents, ANullCallbackIsRefusedAndTheEarlierOneStays) {
    EXPECT_EQ(Register(nullptr), -1);
    EXPECT_THAT(Requests(), IsEmpty());
    EXPECT_EQ(Register(mClient), 0);
    EXPECT_EQ(Register(nullptr), -1);
    EXPECT_EQ(Logged(ANDROID_LOG_ERROR, kNoCallback), 2);
    EXPECT_THAT(Requests(), ElementsAre(kRegister));
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(ConfigurationEvents, RegistrationWatchesTheClientUntilItUnregisters) {
    EXPECT_EQ(Register(mClient), 0);
    EXPECT_EQ(mClient->Linked().size(), 1u);
    EXPECT_EQ(mClient->Cookie(), 0u);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStarted), 1);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStopped), 0);

    mPlatform.ForgetFrames();
    EXPECT_EQ(Unregister(mClient), 0);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStopped), 1);
    EXPECT_THAT(Requests(), ElementsAre(kUnregister));
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_configure]", "callback is null"), 1);
}

TEST_F(ConfigurationEvents, UnregisteringOneOfSeveralClientsSendsNoRequest) {
    EXPECT_EQ(Register(mClient), 0);
    EXPECT_EQ(Register(mSecond), -1);
    EXPECT_EQ(Register(mThird), -1);
    mPlatform.ForgetFrames();
    EXPECT_EQ(Unregister(mSecond), -1);
    EXPECT_THAT(mSecond->Linked(), IsEmpty());
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStopped), 1);
    Send(kEvent);
    EXPECT_EQ(Unregister(mClient), -1);
    Send(kEvent);
    EXPECT_THAT(Requests(), IsEmpty());
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
    EXPECT_THAT(mSecond->Calls(), IsEmpty());
    EXPECT_THAT(mThird->Calls(), ElementsAre(kCall, kCall));
    EXPECT_EQ(mThird->Linked().size(), 1u);

    mPlatform.SetReply(R"({"ret": 6})");
    EXPECT_EQ(Unregister(mThird), 6);
    EXPECT_THAT(Requests(), ElementsAre(kUnregister));
    EXPECT_THAT(mThird->Linked(), IsEmpty());
    Send(kEvent);
    EXPECT_THAT(mThird->Calls(), ElementsAre(kCall, kCall));
}

TEST_F(ConfigurationEvents, UnregisteringAnUnknownClientDoesNotAffectTheOthers) {
    EXPECT_EQ(Register(mClient), 0);
    mPlatform.ForgetFrames();
    EXPECT_EQ(Unregister(mSecond), -1);
    EXPECT_EQ(Unregister(nullptr), -1);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStopped), 0);
    EXPECT_THAT(Requests(), IsEmpty());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(ConfigurationEvents, UnregisteringAnUnknownClientAsksThePlatformIfNoneIsRegistered) {
    mPlatform.SetReply(R"({"ret": 6})");
    EXPECT_EQ(Unregister(mClient), 6);
    EXPECT_EQ(Unregister(nullptr), 6);
    EXPECT_THAT(Requests(), ElementsAre(kUnregister, kUnregister));
}

TEST_F(ConfigurationEvents, AClientThatRegistersTwiceIsCalledTwiceUntilItUnregistersTwice) {
    EXPECT_EQ(Register(mClient), 0);
    EXPECT_EQ(Register(mClient), -1);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall, kCall));
    EXPECT_EQ(Unregister(mClient), -1);
    EXPECT_EQ(mClient->Linked().size(), 1u);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall, kCall, kCall));
    EXPECT_EQ(Unregister(mClient), 0);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall, kCall, kCall));
}

TEST_F(ConfigurationEvents, TheDeathOfOneClientUnregistersAllAndAsksThePlatform) {
    EXPECT_EQ(Register(mClient), 0);
    EXPECT_EQ(Register(mSecond), -1);
    mPlatform.ForgetFrames();
    mSecond->Die();
    EXPECT_EQ(mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "ENTER"), 1);
    EXPECT_EQ(mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "LEAVE"), 1);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kDied), 1);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStopped), 2);
    EXPECT_EQ(Logged(ANDROID_LOG_ERROR, kNoCallback), 0);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_THAT(mSecond->Linked(), IsEmpty());
    EXPECT_THAT(Requests(), ElementsAre(kUnregister));
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(mSecond->Calls(), IsEmpty());
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_configure]", "callback is null"), 1);

    mPlatform.ForgetFrames();
    EXPECT_EQ(Register(mClient), 0);
    EXPECT_THAT(Requests(), ElementsAre(kRegister));
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(ConfigurationEvents, TwoClientsThatDieTogetherAreOneDeath) {
    EXPECT_EQ(Register(mClient), 0);
    EXPECT_EQ(Register(mSecond), -1);
    const auto recipient = mClient->Linked().at(0);
    mPlatform.ForgetFrames();
    recipient->serviceDied(0, android::wp<IBase>(mClient.get()));
    recipient->serviceDied(0, android::wp<IBase>(mSecond.get()));
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kDied), 1);
    EXPECT_THAT(Requests(), ElementsAre(kUnregister));
}

TEST_F(ConfigurationEvents, ALateDeathNotificationDoesNotAffectTheOthers) {
    EXPECT_EQ(Register(mClient), 0);
    EXPECT_EQ(Register(mSecond), -1);
    const auto recipient = mClient->Linked().at(0);
    EXPECT_EQ(Unregister(mClient), -1);
    mPlatform.ForgetFrames();
    recipient->serviceDied(0, android::wp<IBase>(mClient.get()));
    // Also when the notice had passed the recipient already, and set its flag.
    static_cast<TolmHidlClientDeathRecipient&>(*recipient).SetDied(true);
    mService->OnHidlClientDied(0, android::wp<IBase>(mClient.get()));
    EXPECT_THAT(Requests(), IsEmpty());
    EXPECT_EQ(mSecond->Linked().size(), 1u);
    Send(kEvent);
    EXPECT_THAT(mSecond->Calls(), ElementsAre(kCall));
}

TEST_F(ConfigurationEvents, WithoutAnAdaptorNothingIsRegistered) {
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(Register(mClient), -1);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    TolmConfigurationCallback(8, {}, nullptr);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(ConfigurationEvents, WithoutAnAdaptorTheClientIsReleasedAnyway) {
    EXPECT_EQ(Register(mClient), 0);
    TolmConfigurationAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(Unregister(mClient), -1);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    TolmConfigurationCallback(8, {}, nullptr);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(ConfigurationEvents, RegistrationsAndDeathsBesideEventsDoNotDisturbEachOther) {
    constexpr int kTurns = 100;
    std::thread registrations([this] {
        for (int i = 0; i < kTurns; ++i) {
            const sp<Client> client = new Client;
            Register(client);
            Register(mSecond);
            if (i % 2 == 0) client->Die();
            Unregister(mSecond);
            Unregister(client);
        }
    });
    for (int i = 0; i < kTurns; ++i) Send(kEvent);
    registrations.join();
    EXPECT_EQ(Register(mClient), 0);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

// No event may be lost to a client because another one comes and goes.
TEST_F(ConfigurationEvents, ReachAClientWhileAnotherComesAndGoes) {
    constexpr int kTimes = 300;
    EXPECT_EQ(Register(mClient), 0);
    std::atomic<bool> stop{false};
    std::thread other([&] {
        while (!stop) {
            EXPECT_EQ(Register(mSecond), -1);
            EXPECT_EQ(Unregister(mSecond), -1);
        }
    });
    for (int i = 0; i < kTimes; ++i) Send(kEvent);
    stop = true;
    other.join();
    EXPECT_EQ(mClient->Calls().size(), static_cast<size_t>(kTimes));
}

TEST_F(ConfigurationEvents, ReachAClientThatRegistersWhileTheLastOneDies) {
    Beside registration([this] { EXPECT_EQ(Register(mSecond), 0); });
    EXPECT_EQ(Register(mClient), 0);
    mClient->WhenUnlinked([&] { registration.Begin(); });
    mClient->Die();
    registration.End();
    EXPECT_EQ(mSecond->Linked().size(), 1u);
    Send(kEvent);
    EXPECT_THAT(mSecond->Calls(), ElementsAre(kCall));
}

TEST_F(ConfigurationEvents, ReachAClientThatRegistersWhileTheLastOneLeaves) {
    Beside registration([this] { EXPECT_EQ(Register(mSecond), 0); });
    EXPECT_EQ(Register(mClient), 0);
    mClient->WhenUnlinked([&] { registration.Begin(); });
    EXPECT_EQ(Unregister(mClient), 0);
    registration.End();
    EXPECT_EQ(mSecond->Linked().size(), 1u);
    Send(kEvent);
    EXPECT_THAT(mSecond->Calls(), ElementsAre(kCall));
}

// Either the death comes first and drops all, or the client is taken back first and its death no longer matters.
TEST_F(ConfigurationEvents, ADeathBesideTheEndOfItsClientDropsAllOrNone) {
    for (int i = 0; i < 200; ++i) {
        const sp<Client> staying = new Client;
        const sp<Client> dying = new Client;
        EXPECT_EQ(Register(staying), 0);
        EXPECT_EQ(Register(dying), -1);
        mPlatform.ForgetFrames();
        std::thread death([&] { dying->Die(); });
        const int status = Unregister(dying);
        death.join();
        Send(kEvent);
        if (status == -1 && Requests().empty()) {
            EXPECT_THAT(staying->Calls(), ElementsAre(kCall));
            EXPECT_EQ(Unregister(staying), 0);
        } else {
            EXPECT_THAT(staying->Calls(), IsEmpty());
        }
    }
}

TEST(ConfigurationWithoutPlatform, ReleasesItsClientAnyway) {
    const ScratchDirectory directory;
    const sp<Configuration> service = new Configuration;
    const sp<RecordingCallback> client = new RecordingCallback;
    EXPECT_EQ(static_cast<int32_t>(service->RegisterCallback(client)), -1);
    EXPECT_EQ(client->Linked().size(), 1u);
    TolmConfigurationCallback(8, {}, nullptr);
    EXPECT_THAT(client->Calls(), ElementsAre("onConfigurationEvent 8 0 0 '' '' '' 0 0 0 '' 0 0 0 0 0 0 0"));
    EXPECT_EQ(static_cast<int32_t>(service->UnregisterCallback(client)), -1);
    EXPECT_THAT(client->Linked(), IsEmpty());
}

}  // namespace hbbtv::test
