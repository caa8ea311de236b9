// From the application manager's event to the client that has registered for it: forwarding, the one flag of the
// service, and the clients' deaths.

#include <IAIPEventCallbackListener.h>
#include <atomic>
#include <functional>
#include <thread>

#include "ApplicationManager.h"
#include "beside.h"
#include "recording_client.h"
#include "service_events.h"

namespace hbbtv::test {

namespace {

using RecordingCallback = RecordingClient<vantorel::hardware::hbbtv::V1_0::IAIPEventCallback>;

using namespace vantorel::hardware::hbbtv::implementation;
using android::sp;
using android::wp;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kEvent[] = R"({"t": 237, "appid": 17, "orgid": -19})";
constexpr char kQuestion[] = R"({"t": 271, "countryCode": "DEU"})";
constexpr char kRefused[] = "{\n\t\"ret\" : -1\n}\n";
constexpr char kRatedZero[] = "{\n\t\"parentalRating\" : 0,\n\t\"ret\" : 0\n}\n";

void* Context(uintptr_t bits) {
    return reinterpret_cast<void*>(bits);
}

class ApplicationManagerEvents : public ServiceEvents<ApplicationManager, RecordingCallback> {
  protected:
    ApplicationManagerEvents() : ServiceEvents("[hidl_application_manager_wrapper_client]") {}

    int Register(int event, const sp<Client>& client, int64_t context = 0x55) {
        return mService->RegisterCallback(static_cast<vantorel::hardware::hbbtv::V1_0::TolmAIPEvent>(event), client,
                                          context);
    }

    int Unregister(int event, int64_t context = 0x55) {
        return mService->UnregisterCallback(static_cast<vantorel::hardware::hbbtv::V1_0::TolmAIPEvent>(event), context);
    }
};

struct EventCase {
    int event;
    std::function<void()> happen;
    const char* call;
};

void PrintTo(const EventCase& row, std::ostream* out) {
    *out << row.event;
}

bool gTrue = true;
bool gFalse = false;
int32_t gRating = 12;
const ::TolmAIPEventInfo kInfo{17, -19};

void HappenAs(::TolmAIPEvent event) {
    onApplicationEventCallback(event, kInfo, Context(0xffffffff));
}

const EventCase kEvents[] = {
    {1, [] { HappenAs(1); }, "onApplicationEvent 1 17 -19 4294967295"},
    {2, [] { HappenAs(2); }, "onApplicationEvent 2 0 0 4294967295"},
    {3, [] { HappenAs(3); }, "onApplicationEvent 3 0 0 4294967295"},
    {4, [] { onGetLocalParantalRating("DEU", &gRating); }, "onGetLocalParantalRating DEU 12"},
    {5, [] { onApplicationTopMost(1, -2, Context(0xfffffff5)); }, "onApplicationTopMost 1 -2 4294967285"},
    {6, [] { onApplicationNoTopMost(1, -2, Context(6)); }, "onApplicationNoTopMost 1 -2 6"},
    {7, [] { onApplicationDestroyRequest(1, -2, Context(7)); }, "onApplicationDestroyRequest 1 -2 7"},
    {8, [] { onKeyPress(1, -2, Context(8)); }, "onKeyPress 1 -2 8"},
    {9, [] { onKeyUp(1, -2, Context(9)); }, "onKeyUp 1 -2 9"},
    {10, [] { onKeyDown(1, -2, Context(10)); }, "onKeyDown 1 -2 10"},
    {11, [] { onIsParentalratingBlocked(1, -2, &gTrue); }, "onIsParentalratingBlocked 1 -2 1"},
    {18, [] { onRequestDsmccFile("file", Context(18)); }, "onRequestDsmccFile file 18"},
    {19, [] { onReleaseDsmccFile("file", Context(19)); }, "onReleaseDsmccFile file 19"},
    {21, [] { onIsObjectSupported("video/broadcast", &gFalse); }, "onIsObjectSupported video/broadcast 0"},
    {22, [] { onHandleBroadcastService(true); }, "onHandleBroadcastService 1"},
    {23, [] { onGetConfiguration(); }, "onGetConfiguration"},
    {24, [] { onPlatformInitialize(); }, "onPlatformInitialize"},
    {25, [] { onPlatformFinalize(); }, "onPlatformFinalize"},
    {26, [] { onSetBroadcastFullScreen(true); }, "onSetBroadcastFullScreen 1"},
    {27, [] { onOpappStateChange(1, -2, "a", "b", "c"); }, "onOpappStateChange 1 -2 a b c"},
    {28, [] { onOpappContextChange(1, -2, "a", "b", "c"); }, "onOpappContextChange 1 -2 a b c"},
    {29, [] { onOpappUpdate(1, -2, "a"); }, "onOpappUpdate 1 -2 a"},
};

class ApplicationManagerEvent : public ApplicationManagerEvents, public testing::WithParamInterface<EventCase> {};

}  // namespace

TEST_P(ApplicationManagerEvent, ReachesTheClientThatHasRegisteredForIt) {
    const sp<Client> other = new Client;
    for (const EventCase& row : kEvents) {
        EXPECT_EQ(Register(row.event, row.event == GetParam().event ? mClient : other), 0);
    }
    GetParam().happen();
    EXPECT_THAT(mClient->Calls(), ElementsAre(GetParam().call));
    EXPECT_THAT(other->Calls(), IsEmpty());
}

TEST_P(ApplicationManagerEvent, IsDroppedSilentlyWithoutAClientOfItsOwn) {
    for (const EventCase& row : kEvents) {
        if (row.event == GetParam().event) continue;
        EXPECT_EQ(Register(row.event, mClient), 0);
    }
    mLog.Clear();
    GetParam().happen();
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(mLog.Text(), "");
}

TEST_P(ApplicationManagerEvent, IsHeldBackByTheEndOfAnotherRegistration) {
    const int other = GetParam().event == 5 ? 6 : 5;
    EXPECT_EQ(Register(GetParam().event, mClient), 0);
    EXPECT_EQ(Register(other, mClient), 0);
    EXPECT_EQ(Unregister(other), 0);
    mLog.Clear();
    GetParam().happen();
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(mLog.Text(), "");
    EXPECT_EQ(Register(other, new Client), 0);
    GetParam().happen();
    EXPECT_THAT(mClient->Calls(), ElementsAre(GetParam().call));
}

TEST_P(ApplicationManagerEvent, IsDroppedWhenThereIsNoService) {
    EXPECT_EQ(Register(GetParam().event, mClient), 0);
    mService.clear();
    GetParam().happen();
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    // The registration is still there, for the next service.
    mService = new ApplicationManager;
    GetParam().happen();
    EXPECT_THAT(mClient->Calls(), ElementsAre(GetParam().call));
}

TEST_P(ApplicationManagerEvent, MayBeRegisteredOnceUntilItIsUnregistered) {
    const sp<Client> second = new Client;
    EXPECT_EQ(Register(GetParam().event, mClient), 0);
    EXPECT_EQ(Register(GetParam().event, second), -1);
    EXPECT_THAT(second->Linked(), IsEmpty());
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStarted), 1);
    GetParam().happen();
    EXPECT_THAT(mClient->Calls(), ElementsAre(GetParam().call));
    EXPECT_EQ(Unregister(GetParam().event), 0);
    EXPECT_EQ(Register(GetParam().event, second), 0);
    GetParam().happen();
    EXPECT_THAT(mClient->Calls(), ElementsAre(GetParam().call));
    EXPECT_THAT(second->Calls(), ElementsAre(GetParam().call));
}

INSTANTIATE_TEST_SUITE_P(Each, ApplicationManagerEvent, testing::ValuesIn(kEvents),
                         [](const auto& row) { return "Event" + std::to_string(row.param.event); });

TEST_F(ApplicationManagerEvents, ReachTheClientFromThePlatformWithItsContext) {
    EXPECT_EQ(Register(1, mClient, 0x7777777780000abc), 0);
    Send(kEvent);
    Send(R"({"t": 237})");
    EXPECT_THAT(mClient->Calls(),
                ElementsAre("onApplicationEvent 1 17 -19 2147486396", "onApplicationEvent 1 0 0 2147486396"));
}

TEST_F(ApplicationManagerEvents, OfTheFullScreenReachNoClient) {
    EXPECT_EQ(Register(26, mClient), 0);
    EXPECT_EQ(Register(1, mClient), 0);
    Send(R"({"t": 270, "bValue": 1, "isDestroy": 0})");
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(ApplicationManagerEvents, QuestionsDoNotChangeTheValuesOfTheCaller) {
    for (const int event : {4, 11, 21}) EXPECT_EQ(Register(event, mClient), 0);
    bool blocked = true;
    bool supported = false;
    int32_t rating = 9;
    onIsParentalratingBlocked(1, 2, &blocked);
    onIsObjectSupported("t", &supported);
    onGetLocalParantalRating("AUT", &rating);
    EXPECT_TRUE(blocked);
    EXPECT_FALSE(supported);
    EXPECT_EQ(rating, 9);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onIsParentalratingBlocked 1 2 1", "onIsObjectSupported t 0",
                                              "onGetLocalParantalRating AUT 9"));
}

TEST_F(ApplicationManagerEvents, TheRatingIsAlwaysZero) {
    TolmApmAdaptorIpc::GetInstance();  // so that its socket is there
    EXPECT_EQ(Ask(kQuestion), kRefused);
    EXPECT_EQ(Register(4, mClient), 0);
    EXPECT_EQ(Ask(kQuestion), kRatedZero);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onGetLocalParantalRating DEU 0"));
    // Also while events are held back: the adaptor still has its function.
    EXPECT_EQ(Register(5, mClient), 0);
    EXPECT_EQ(Unregister(5), 0);
    EXPECT_EQ(Ask(kQuestion), kRatedZero);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onGetLocalParantalRating DEU 0"));
    EXPECT_EQ(Unregister(4), 0);
    EXPECT_EQ(Ask(kQuestion), kRefused);
}

TEST_F(ApplicationManagerEvents, NullStringsAreEmpty) {
    for (const int event : {4, 18, 27}) EXPECT_EQ(Register(event, mClient), 0);
    int32_t rating = 0;
    onGetLocalParantalRating(nullptr, &rating);
    onRequestDsmccFile(nullptr, nullptr);
    onOpappStateChange(1, 2, nullptr, "b", nullptr);
    EXPECT_THAT(mClient->Calls(),
                ElementsAre("onGetLocalParantalRating  0", "onRequestDsmccFile  0", "onOpappStateChange 1 2  b "));
}

TEST_F(ApplicationManagerEvents, WithoutAFunctionAreRefusedButStayTaken) {
    for (const int event : {-1, 0, 12, 13, 14, 15, 16, 17, 20, 30, 2147483647}) {
        SCOPED_TRACE(event);
        const sp<Client> client = new Client;
        mLog.Clear();
        EXPECT_EQ(Register(event, client), -1);
        EXPECT_EQ(client->Linked().size(), 1u);
        EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStarted), 1);
        // Taken: a second one is not even watched.
        EXPECT_EQ(Register(event, mClient), -1);
        EXPECT_THAT(mClient->Linked(), IsEmpty());
        EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStarted), 1);
        EXPECT_EQ(Unregister(event), 0);
        EXPECT_THAT(client->Linked(), IsEmpty());
        EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStopped), 1);
        EXPECT_EQ(Register(event, mClient), -1);
        EXPECT_EQ(mClient->Linked().size(), 1u);
        EXPECT_EQ(Unregister(event), 0);
    }
}

TEST_F(ApplicationManagerEvents, AreDeliveredAgainAfterARefusedRegistrationOfEvent12) {
    EXPECT_EQ(Register(8, mClient), 0);
    EXPECT_EQ(Register(5, mClient), 0);
    EXPECT_EQ(Unregister(5), 0);
    onKeyPress(1, 2, nullptr);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(Register(12, mClient), -1);
    onKeyPress(3, 4, nullptr);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onKeyPress 3 4 0"));
}

TEST_F(ApplicationManagerEvents, StayHeldBackWhenARegistrationIsRefusedBeforeItIsWatched) {
    EXPECT_EQ(Register(8, mClient), 0);
    EXPECT_EQ(Register(5, mClient), 0);
    EXPECT_EQ(Unregister(5), 0);
    EXPECT_EQ(Register(8, new Client), -1);
    EXPECT_EQ(Register(9, nullptr), -1);
    onKeyPress(1, 2, nullptr);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(ApplicationManagerEvents, AreNotHeldBackByTheEndOfARegistrationThatWasNotThere) {
    EXPECT_EQ(Register(8, mClient), 0);
    mLog.Clear();
    EXPECT_EQ(Unregister(5), 0);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStopped), 0);
    onKeyPress(1, 2, nullptr);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onKeyPress 1 2 0"));
}

TEST_F(ApplicationManagerEvents, ANullCallbackIsRefused) {
    EXPECT_EQ(Register(8, nullptr), -1);
    EXPECT_EQ(Logged(ANDROID_LOG_ERROR, kNoCallback), 1);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStarted), 0);
    // The event is still free.
    EXPECT_EQ(Register(8, mClient), 0);
}

TEST_F(ApplicationManagerEvents, RegistrationWatchesTheClientUntilItUnregisters) {
    EXPECT_EQ(Register(8, mClient), 0);
    EXPECT_EQ(mClient->Linked().size(), 1u);
    EXPECT_EQ(mClient->Cookie(), 0u);
    EXPECT_EQ(Register(9, mClient), 0);
    EXPECT_EQ(mClient->Linked().size(), 2u);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStarted), 2);
    EXPECT_EQ(Unregister(8), 0);
    EXPECT_EQ(mClient->Linked().size(), 1u);
    EXPECT_EQ(Unregister(9), 0);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStopped), 2);
    EXPECT_EQ(Logged(ANDROID_LOG_ERROR, kNoCallback), 0);
}

TEST_F(ApplicationManagerEvents, AClientThatUnregistersIsReleased) {
    sp<Client> client = new Client;
    const wp<Client> watched = client;
    EXPECT_EQ(Register(8, client), 0);
    client.clear();
    EXPECT_NE(watched.promote().get(), nullptr);
    EXPECT_EQ(Unregister(8), 0);
    EXPECT_EQ(watched.promote().get(), nullptr);
}

TEST_F(ApplicationManagerEvents, AContextGoesWithItsRegistration) {
    EXPECT_EQ(Register(1, mClient, 5), 0);
    EXPECT_EQ(Unregister(1, 6), 0);  // of another context, which ends the registration but leaves the context
    EXPECT_EQ(Register(1, mClient, 7), 0);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onApplicationEvent 1 17 -19 5", "onApplicationEvent 1 17 -19 7"));
}

TEST_F(ApplicationManagerEvents, TheDeathOfTheClientEndsAllDeliveries) {
    const sp<Client> other = new Client;
    EXPECT_EQ(Register(1, mClient), 0);
    EXPECT_EQ(Register(4, mClient), 0);
    EXPECT_EQ(Register(8, other), 0);
    mLog.Clear();
    mClient->Die();
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kDied), 1);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStopped), 1);
    EXPECT_EQ(Logged(ANDROID_LOG_ERROR, kNoCallback), 0);
    EXPECT_EQ(mLog.Count(ANDROID_LOG_VERBOSE, "[ipc_apm]", "ENTER"), 1);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_THAT(other->Linked(), IsEmpty());
    Send(kEvent);
    onKeyPress(1, 2, nullptr);
    EXPECT_EQ(Ask(kQuestion), kRefused);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(other->Calls(), IsEmpty());

    // Every registration is new and does not depend on the old ones.
    EXPECT_EQ(Register(8, other), 0);
    onKeyPress(3, 4, nullptr);
    EXPECT_EQ(Register(1, other, 9), 0);
    Send(kEvent);
    EXPECT_THAT(other->Calls(), ElementsAre("onKeyPress 3 4 0", "onApplicationEvent 1 17 -19 9"));
}

TEST_F(ApplicationManagerEvents, TheDeathOfAClientWithManyRegistrationsIsHandledOnceOrOften) {
    EXPECT_EQ(Register(1, mClient), 0);
    EXPECT_EQ(Register(8, mClient), 0);
    EXPECT_EQ(Register(12, mClient) + 1, 0);
    const auto recipients = mClient->Linked();
    ASSERT_EQ(recipients.size(), 3u);
    recipients[0]->serviceDied(0, wp<IBase>(mClient.get()));
    const sp<Client> next = new Client;
    EXPECT_EQ(Register(8, next), 0);
    recipients[1]->serviceDied(0, wp<IBase>(mClient.get()));
    recipients[2]->serviceDied(0, wp<IBase>(mClient.get()));
    // Who has registered in the meantime is left alone.
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kDied), 1);
    onKeyPress(1, 2, nullptr);
    EXPECT_THAT(next->Calls(), ElementsAre("onKeyPress 1 2 0"));
}

TEST_F(ApplicationManagerEvents, TheDeathOfAReleasedClientIsHandled) {
    EXPECT_EQ(Register(8, mClient), 0);
    sp<Client> gone = new Client;
    const wp<IBase> who(gone.get());
    gone.clear();
    ASSERT_EQ(who.promote().get(), nullptr);
    mLog.Clear();
    mService->OnHidlClientDied(0, who);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kDied), 1);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kStopped), 1);
    EXPECT_EQ(Logged(ANDROID_LOG_ERROR, kNoCallback), 1);
    onKeyPress(1, 2, nullptr);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    mService->OnHidlClientDied(0, wp<IBase>());
    EXPECT_EQ(Register(8, mClient), 0);
    onKeyPress(3, 4, nullptr);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onKeyPress 3 4 0"));
}

TEST_F(ApplicationManagerEvents, ALateDeathNotificationOfAnUnregisteredClientIsIgnored) {
    EXPECT_EQ(Register(8, mClient), 0);
    const auto recipient = mClient->Linked().at(0);
    EXPECT_EQ(Unregister(8), 0);
    const sp<Client> next = new Client;
    EXPECT_EQ(Register(8, next), 0);
    recipient->serviceDied(0, wp<IBase>(mClient.get()));
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kDied), 0);
    onKeyPress(1, 2, nullptr);
    EXPECT_THAT(next->Calls(), ElementsAre("onKeyPress 1 2 0"));
}

TEST_F(ApplicationManagerEvents, ReachAClientThatRegistersWhileAnotherDies) {
    const sp<Client> next = new Client;
    Beside registration([&] { EXPECT_EQ(Register(1, next, 9), 0); });
    EXPECT_EQ(Register(8, mClient), 0);
    mClient->WhenUnlinked([&] { registration.Begin(); });
    mClient->Die();
    registration.End();
    EXPECT_EQ(next->Linked().size(), 1u);
    Send(kEvent);
    EXPECT_THAT(next->Calls(), ElementsAre("onApplicationEvent 1 17 -19 9"));
}

TEST_F(ApplicationManagerEvents, ReachAClientThatRegistersWhileAnotherLeaves) {
    const sp<Client> next = new Client;
    Beside registration([&] { EXPECT_EQ(Register(1, next, 9), 0); });
    EXPECT_EQ(Register(1, mClient), 0);
    mClient->WhenUnlinked([&] { registration.Begin(); });
    EXPECT_EQ(Unregister(1), 0);
    registration.End();
    EXPECT_EQ(next->Linked().size(), 1u);
    Send(kEvent);
    EXPECT_THAT(next->Calls(), ElementsAre("onApplicationEvent 1 17 -19 9"));
}

TEST_F(ApplicationManagerEvents, WithoutAnAdaptorNothingIsUnregistered) {
    EXPECT_EQ(Register(8, mClient), 0);
    TolmApmAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(Unregister(8), -1);
    EXPECT_EQ(Register(9, mClient), -1);
    EXPECT_EQ(mClient->Linked().size(), 1u);
    onKeyPress(1, 2, nullptr);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onKeyPress 1 2 0"));
    mClient->Die();
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kDied), 1);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    onKeyPress(3, 4, nullptr);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onKeyPress 1 2 0"));
}

TEST_F(ApplicationManagerEvents, AServiceThatGoesDoesNotTakeItsSuccessorsPlace) {
    sp<ApplicationManager> second = new ApplicationManager;
    mService.clear();
    EXPECT_EQ(static_cast<int32_t>(
                  second->RegisterCallback(vantorel::hardware::hbbtv::V1_0::TolmAIPEvent::KEY_PRESS, mClient, 1)),
              0);
    onKeyPress(1, 2, nullptr);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onKeyPress 1 2 0"));
}

TEST_F(ApplicationManagerEvents, RegistrationsAndDeathsBesideEventsDoNotDisturbEachOther) {
    constexpr int kTurns = 200;
    std::atomic<bool> stop{false};
    std::thread registrations([&] {
        for (int i = 0; i < kTurns; ++i) {
            const sp<Client> client = new Client;
            EXPECT_EQ(Register(1, client), 0);
            EXPECT_EQ(Register(4, client), 0);
            client->Die();
        }
    });
    std::thread others([&] {
        while (!stop) {
            const sp<Client> client = new Client;
            EXPECT_EQ(Register(8, client), 0);
            onKeyPress(1, 2, nullptr);
            EXPECT_EQ(Unregister(8), 0);
        }
    });
    for (int i = 0; i < kTurns; ++i) {
        Send(kEvent);
        EXPECT_NE(Ask(kQuestion), "no reply");
    }
    registrations.join();
    stop = true;
    others.join();
    EXPECT_EQ(Register(1, mClient, 5), 0);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onApplicationEvent 1 17 -19 5"));
}

}  // namespace hbbtv::test
