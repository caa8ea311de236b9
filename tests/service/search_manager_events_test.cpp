// From the platform's event to the client of searches: forwarding, registration and the client's death. The service
// runs in this process, the platform is at the other end of real sockets.

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>

#include "SearchManager.h"
#include "event_connection.h"
#include "ipc/src/plugin/tolm_search_manager_adaptor.h"
#include "log_capture.h"
#include "method_rows.h"
#include "recording_search_callback.h"

namespace hbbtv::test {

namespace {

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::SearchManager;
using vantorel::hardware::hbbtv::implementation::TolmSearchManagerCallback;
using IBase = android::hidl::base::V1_0::IBase;

constexpr char kTag[] = "[hidl_search_manager_wrapper_client]";
constexpr char kEvent[] = R"({"event": 0, "state": 3, "searchHandle": "0xf0009d20"})";
constexpr int64_t kContext = 0x7777777780000abc;  // the low half counts
constexpr char kCall[] = "OnSearchManagerEvent 0 3 4026572064 2147486396";

class SearchEvents : public testing::Test {
  protected:
    void Register(const sp<RecordingSearchCallback>& callback, int64_t context = kContext) {
        ASSERT_EQ(0, static_cast<int32_t>(mService->SearchManager_RegisterCallback(0x100001000, callback, context)));
    }

    // A one-way event, as it leaves the platform, until it has been handled.
    void Send(const std::string& json) {
        if (mEvents == nullptr)
            mEvents = std::make_unique<EventConnection>(mDirectory / "service_hbbtv_to_plugin_sm", 8);
        ASSERT_TRUE(mEvents->Send({json}));
    }

    int Logged(int priority, const char* message) const { return mLog.Count(priority, kTag, message); }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    FakePlatform mPlatform{"service_plugin_to_hbbtv_sm", R"({"ret": 0})"};
    sp<SearchManager> mService = new SearchManager;
    const sp<RecordingSearchCallback> mClient = new RecordingSearchCallback;
    std::unique_ptr<EventConnection> mEvents;
};

}  // namespace

TEST_F(SearchEvents, ReachTheRegisteredClientWithItsContext) {
    Register(mClient);
    ASSERT_EQ(1u, mPlatform.Frames().size());
    EXPECT_EQ(
        "{\n\t\"context\" : \"0x80000abc\",\n\t\"in_handle\" : \"0x1000\",\n\t\"method\" : 4,\n\t\"type\" : 0\n}\n",
        mPlatform.Frames()[0].payload);
    Send(kEvent);
    Send(R"({"event": 0, "state": 2})");
    Send(R"({"event": 0, "state": -1, "searchHandle": "0xffffffff"})");
    Send(R"({"event": 3, "state": 2, "searchHandle": "0x9d20"})");
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall, "OnSearchManagerEvent 0 2 0 2147486396",
                                              "OnSearchManagerEvent 0 -1 4294967295 2147486396",
                                              "OnSearchManagerEvent 3 0 0 2147486396"));
}

TEST_F(SearchEvents, GiveHandlesAndContextsWithAZeroHighHalf) {
    Register(mClient, -1);
    Send(R"({"event": 0, "searchHandle": "0x12345678f0000001"})");
    EXPECT_THAT(mClient->Calls(), ElementsAre("OnSearchManagerEvent 0 0 4026531841 4294967295"));
}

TEST_F(SearchEvents, AreDroppedSilentlyWithoutAClient) {
    TolmSearchManagerCallback(0, {3, nullptr}, nullptr);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(SearchEvents, AreDroppedWhenTheServiceHasGone) {
    Register(mClient);
    mService.clear();
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());

    mService = new SearchManager;
    Register(mClient);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(SearchEvents, GoOnWhenAnEarlierServiceGoes) {
    sp<SearchManager> earlier = mService;
    mService = new SearchManager;
    Register(mClient);
    earlier.clear();
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(SearchEvents, ANullCallbackIsRefusedAndTheEarlierOneStays) {
    Register(mClient);
    mPlatform.ForgetFrames();
    EXPECT_EQ(-1, static_cast<int32_t>(mService->SearchManager_RegisterCallback(1, nullptr, 1)));
    EXPECT_EQ(1, Logged(ANDROID_LOG_ERROR, "cb is null"));
    EXPECT_THAT(mPlatform.Frames(), IsEmpty());
    EXPECT_EQ(1u, mClient->Linked().size());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(SearchEvents, RegistrationWatchesTheClient) {
    Register(mClient);
    EXPECT_EQ(1u, mClient->Linked().size());
    EXPECT_EQ(0u, mClient->Cookie());
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StartMonitor"));
}

TEST_F(SearchEvents, ThePlatformsRefusalIsPassedOnAndTheClientRegisteredAllTheSame) {
    mPlatform.SetReply(R"({"ret": 6})");
    EXPECT_EQ(6, static_cast<int32_t>(mService->SearchManager_RegisterCallback(1, mClient, kContext)));
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(SearchEvents, ASecondRegistrationReplacesTheFirstWhateverItsSearchManager) {
    const sp<RecordingSearchCallback> second = new RecordingSearchCallback;
    Register(mClient);
    EXPECT_EQ(0, static_cast<int32_t>(mService->SearchManager_RegisterCallback(0x2000, second, 5)));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(1u, second->Linked().size());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(second->Calls(), ElementsAre("OnSearchManagerEvent 0 3 4026572064 5"));
}

TEST_F(SearchEvents, RegisteringTheSameClientAgainLeavesOneDeathNotice) {
    Register(mClient);
    Register(mClient);
    EXPECT_EQ(1u, mClient->Linked().size());
    mClient->Die();
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::serviceDied - client died"));
}

TEST_F(SearchEvents, TheDeathOfTheClientEndsTheDeliveryAndTheAdaptorKeepsItsReceiver) {
    Register(mClient);
    mPlatform.ForgetFrames();
    mClient->Die();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "ENTER"));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "LEAVE"));
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::serviceDied - client died"));
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(0, Logged(ANDROID_LOG_ERROR, "cb is null"));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(mPlatform.Frames(), IsEmpty());
}

TEST_F(SearchEvents, FlowAgainToAClientThatRegistersAfterADeath) {
    Register(mClient);
    mClient->Die();
    const sp<RecordingSearchCallback> next = new RecordingSearchCallback;
    Register(next, 5);
    EXPECT_EQ(1u, next->Linked().size());
    Send(kEvent);
    EXPECT_THAT(next->Calls(), ElementsAre("OnSearchManagerEvent 0 3 4026572064 5"));
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(SearchEvents, TheLateDeathNoticeOfAReplacedClientLeavesItsSuccessorAlone) {
    const sp<RecordingSearchCallback> second = new RecordingSearchCallback;
    Register(mClient);
    const auto recipient = mClient->Linked().at(0);
    Register(second);
    recipient->serviceDied(0, android::wp<IBase>(mClient.get()));
    // Also when the notice had passed the recipient already.
    mService->OnHidlClientDied(0, android::wp<IBase>(mClient.get()));
    EXPECT_EQ(1u, second->Linked().size());
    Send(kEvent);
    EXPECT_THAT(second->Calls(), ElementsAre(kCall));
}

TEST_F(SearchEvents, WithoutAnAdaptorNothingIsRegisteredAndTheEarlierClientStays) {
    Register(mClient);
    TolmSearchManagerAdaptor::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    const sp<RecordingSearchCallback> second = new RecordingSearchCallback;
    EXPECT_EQ(-1, static_cast<int32_t>(mService->SearchManager_RegisterCallback(1, second, 5)));
    EXPECT_THAT(second->Linked(), IsEmpty());
    EXPECT_EQ(1u, mClient->Linked().size());
    TolmSearchManagerCallback(0, {3, nullptr}, nullptr);
    EXPECT_THAT(mClient->Calls(), ElementsAre("OnSearchManagerEvent 0 3 0 0"));
}

TEST_F(SearchEvents, RegistrationsAndDeathsBesideEventsDoNotDisturbEachOther) {
    constexpr int kTurns = 100;
    Register(mClient);
    std::thread registrations([this] {
        for (int i = 0; i < kTurns; ++i) {
            const sp<RecordingSearchCallback> client = new RecordingSearchCallback;
            Register(client);
            client->Die();
        }
    });
    for (int i = 0; i < kTurns; ++i) Send(kEvent);
    registrations.join();
    Register(mClient, 5);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), testing::Contains("OnSearchManagerEvent 0 3 4026572064 5").Times(1));
}

// Each death meets a registration of the next client; that one must be served whatever the order.
TEST_F(SearchEvents, ADeathBesideARegistrationLeavesTheNewClientServed) {
    for (int i = 0; i < 200; ++i) {
        const sp<RecordingSearchCallback> dying = new RecordingSearchCallback;
        const sp<RecordingSearchCallback> next = new RecordingSearchCallback;
        Register(dying);
        std::thread death([&] { dying->Die(); });
        Register(next);
        death.join();
        Send(kEvent);
        EXPECT_THAT(next->Calls(), ElementsAre(kCall));
    }
}

// Whoever registers last is served, with the context of its own registration.
TEST_F(SearchEvents, TwoRegistrationsAtOnceDoNotMixTheirContexts) {
    for (int i = 0; i < 100; ++i) {
        const sp<RecordingSearchCallback> first = new RecordingSearchCallback;
        const sp<RecordingSearchCallback> second = new RecordingSearchCallback;
        std::thread other([&] { Register(first, 1); });
        Register(second, 2);
        other.join();
        Send(kEvent);
        if (first->Calls().empty()) {
            EXPECT_THAT(second->Calls(), ElementsAre("OnSearchManagerEvent 0 3 4026572064 2"));
        } else {
            EXPECT_THAT(first->Calls(), ElementsAre("OnSearchManagerEvent 0 3 4026572064 1"));
            EXPECT_THAT(second->Calls(), IsEmpty());
        }
    }
}

TEST(SearchManagerWithoutPlatform, RegistersItsClientAllTheSame) {
    const ScratchDirectory directory;
    const sp<SearchManager> service = new SearchManager;
    const sp<RecordingSearchCallback> client = new RecordingSearchCallback;
    EXPECT_EQ(-1, static_cast<int32_t>(service->SearchManager_RegisterCallback(1, client, 5)));
    EXPECT_EQ(1u, client->Linked().size());
    TolmSearchManagerCallback(0, {3, nullptr}, nullptr);
    EXPECT_THAT(client->Calls(), ElementsAre("OnSearchManagerEvent 0 3 0 0"));
}

}  // namespace hbbtv::test
