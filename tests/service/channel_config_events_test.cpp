// From the platform's event to the client of the channel configuration: forwarding, registration and the client's
// death. The service runs in this process, the platform is at the other end of real sockets.

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>

#include "ChannelConfig.h"
#include "ipc/src/plugin/tolm_channel_config_adaptor_ipc.h"
#include "log_capture.h"
#include "method_rows.h"
#include "recording_config_callback.h"

namespace hbbtv::test {

namespace {

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::ChannelConfig;
using vantorel::hardware::hbbtv::implementation::TolmChannelConfigCallback;

constexpr char kTag[] = "[hidl_video_broadcast_wrapper_client]";
constexpr char kEvent[] = R"({"event": 0, "reserved": "A"})";
constexpr int64_t kContext = 0x7777777780000abc;  // the low half counts
constexpr char kCall[] = "OnChannelConfigEvent 0 65 2147486396";

class ChannelConfigEvents : public testing::Test {
  protected:
    void Register(const sp<RecordingConfigCallback>& callback, int64_t context = kContext) {
        ASSERT_EQ(0, static_cast<int32_t>(mService->RegisterCallback(callback, context)));
    }

    // A one-way event, as it leaves the platform, until it has been handled: messages of a connection are handled in
    // order, and the second is answered.
    void Send(const std::string& json) {
        if (mEvents == nullptr) {
            mEvents = std::make_unique<RawConnection>(
                RawConnection::To(mDirectory / "service_hbbtv_to_plugin_vb_chn_config"));
        }
        ASSERT_TRUE(mEvents->Write(FrameBytes(kOneWay, 3, json)));
        ASSERT_TRUE(mEvents->Write(FrameBytes(kRequest, 3, "{}")));
        ASSERT_TRUE(mEvents->ReadFrame().has_value());
    }

    // The requests since the platform was last told to forget them, as they came.
    std::vector<std::string> Requests() const {
        std::vector<std::string> requests;
        for (const Frame& frame : mPlatform.Frames()) requests.push_back(frame.payload);
        return requests;
    }

    int Logged(int priority, const char* message) const { return mLog.Count(priority, kTag, message); }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    FakePlatform mPlatform{"service_plugin_to_hbbtv_vb_chn_config", R"({"ret": 0})"};
    const sp<ChannelConfig> mService = new ChannelConfig;
    const sp<RecordingConfigCallback> mClient = new RecordingConfigCallback;
    std::unique_ptr<RawConnection> mEvents;
};

constexpr char kUnregister[] = "{\n\t\"method\" : 1,\n\t\"type\" : 19\n}\n";

}  // namespace

TEST_F(ChannelConfigEvents, ReachTheRegisteredClientWithItsContext) {
    Register(mClient);
    EXPECT_THAT(Requests(), ElementsAre("{\n\t\"context\" : \"0x80000abc\",\n\t\"method\" : 0,\n\t\"type\" : 19\n}\n"));
    Send(kEvent);
    Send(R"({"event": 0, "reserved": "\u00e9"})");
    Send(R"({"event": 0})");
    Send(R"({"event": 3, "reserved": "A"})");
    Send(R"({"event": -1})");
    EXPECT_THAT(mClient->Calls(),
                ElementsAre(kCall, "OnChannelConfigEvent 0 195 2147486396", "OnChannelConfigEvent 0 0 2147486396",
                            "OnChannelConfigEvent 3 0 2147486396", "OnChannelConfigEvent -1 0 2147486396"));
}

TEST_F(ChannelConfigEvents, GiveAContextWithAZeroHighHalf) {
    Register(mClient, -1);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre("OnChannelConfigEvent 0 65 4294967295"));
}

TEST_F(ChannelConfigEvents, AreDroppedSilentlyWithoutAClient) {
    EXPECT_EQ(0, static_cast<int32_t>(mService->UnregisterCallback()));
    mLog.Clear();
    Send(kEvent);
    TolmChannelConfigCallback(0, {'A'}, nullptr);
    EXPECT_EQ(0, Logged(ANDROID_LOG_WARN, "reserved is empty"));
    for (const LogLine& line : mLog.Lines()) EXPECT_NE(line.tag, kTag) << line.text;
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(ChannelConfigEvents, ANullCallbackIsRefusedAndTheEarlierOneStays) {
    Register(mClient);
    mPlatform.ForgetFrames();
    EXPECT_EQ(-1, static_cast<int32_t>(mService->RegisterCallback(nullptr, 1)));
    EXPECT_THAT(mPlatform.Frames(), IsEmpty());
    EXPECT_EQ(1u, mClient->Linked().size());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(ChannelConfigEvents, RegistrationWatchesTheClientUntilItIsTakenBack) {
    Register(mClient);
    EXPECT_EQ(1u, mClient->Linked().size());
    EXPECT_EQ(0u, mClient->Cookie());
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StartMonitor"));
    EXPECT_EQ(0, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StopMonitor"));

    mPlatform.ForgetFrames();
    EXPECT_EQ(0, static_cast<int32_t>(mService->UnregisterCallback()));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(0, Logged(ANDROID_LOG_ERROR, "cb is null"));
    EXPECT_THAT(Requests(), ElementsAre(kUnregister));
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(ChannelConfigEvents, TakingBackWhatWasNotRegisteredSaysSoAndStillAsksThePlatform) {
    EXPECT_EQ(0, static_cast<int32_t>(mService->UnregisterCallback()));
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(1, Logged(ANDROID_LOG_ERROR, "cb is null"));
    EXPECT_THAT(Requests(), ElementsAre(kUnregister));
}

TEST_F(ChannelConfigEvents, ThePlatformsRefusalIsPassedOnAndTheClientRegisteredAllTheSame) {
    mPlatform.SetReply(R"({"ret": 6})");
    EXPECT_EQ(6, static_cast<int32_t>(mService->RegisterCallback(mClient, kContext)));
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
    EXPECT_EQ(6, static_cast<int32_t>(mService->UnregisterCallback()));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(ChannelConfigEvents, ASecondRegistrationReplacesTheFirst) {
    const sp<RecordingConfigCallback> second = new RecordingConfigCallback;
    Register(mClient);
    Register(second, 5);
    EXPECT_EQ(1u, second->Linked().size());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(second->Calls(), ElementsAre("OnChannelConfigEvent 0 65 5"));
}

TEST_F(ChannelConfigEvents, AReplacedClientIsNotKept) {
    sp<RecordingConfigCallback> first = new RecordingConfigCallback;
    const android::wp<RecordingConfigCallback> watched = first;
    Register(first);
    first.clear();
    EXPECT_NE(nullptr, watched.promote().get());
    Register(mClient);
    EXPECT_EQ(nullptr, watched.promote().get());
}

TEST_F(ChannelConfigEvents, RegisteringTheSameClientAgainLeavesOneDeathNotice) {
    Register(mClient);
    Register(mClient);
    EXPECT_EQ(1u, mClient->Linked().size());
    mPlatform.ForgetFrames();
    mClient->Die();
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::serviceDied - client died"));
    EXPECT_THAT(Requests(), ElementsAre(kUnregister));
}

TEST_F(ChannelConfigEvents, TheDeathOfTheClientEndsTheDeliveryAndTellsThePlatform) {
    Register(mClient);
    mPlatform.ForgetFrames();
    mClient->Die();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "ENTER"));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "LEAVE"));
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::serviceDied - client died"));
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(0, Logged(ANDROID_LOG_ERROR, "cb is null"));
    EXPECT_THAT(Requests(), ElementsAre(kUnregister));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());

    const sp<RecordingConfigCallback> next = new RecordingConfigCallback;
    Register(next, 5);
    EXPECT_EQ(1u, next->Linked().size());
    Send(kEvent);
    EXPECT_THAT(next->Calls(), ElementsAre("OnChannelConfigEvent 0 65 5"));
}

TEST_F(ChannelConfigEvents, TheLateDeathNoticeOfAReplacedClientLeavesItsSuccessorAlone) {
    const sp<RecordingConfigCallback> second = new RecordingConfigCallback;
    Register(mClient);
    const auto recipient = mClient->Linked().at(0);
    Register(second, 5);
    mPlatform.ForgetFrames();
    recipient->serviceDied(0, android::wp<android::hidl::base::V1_0::IBase>(mClient.get()));
    EXPECT_EQ(0, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::serviceDied - client died"));
    EXPECT_THAT(mPlatform.Frames(), IsEmpty());
    EXPECT_EQ(1u, second->Linked().size());
    Send(kEvent);
    EXPECT_THAT(second->Calls(), ElementsAre("OnChannelConfigEvent 0 65 5"));
}

TEST_F(ChannelConfigEvents, WithoutAnAdaptorNothingIsRegisteredAndTheEarlierClientStays) {
    Register(mClient);
    TolmChannelConfigAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    const sp<RecordingConfigCallback> second = new RecordingConfigCallback;
    EXPECT_EQ(-1, static_cast<int32_t>(mService->RegisterCallback(second, 5)));
    EXPECT_THAT(second->Linked(), IsEmpty());
    EXPECT_EQ(1u, mClient->Linked().size());
    TolmChannelConfigCallback(0, {'A'}, nullptr);
    EXPECT_THAT(mClient->Calls(), ElementsAre("OnChannelConfigEvent 0 65 0"));
}

TEST_F(ChannelConfigEvents, WithoutAnAdaptorTheClientIsForgottenAllTheSame) {
    Register(mClient);
    TolmChannelConfigAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(-1, static_cast<int32_t>(mService->UnregisterCallback()));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    TolmChannelConfigCallback(0, {'A'}, nullptr);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(ChannelConfigEvents, RegistrationsAndDeathsBesideEventsDoNotDisturbEachOther) {
    constexpr int kTurns = 100;
    Register(mClient);
    std::thread registrations([this] {
        for (int i = 0; i < kTurns; ++i) {
            const sp<RecordingConfigCallback> client = new RecordingConfigCallback;
            Register(client);
            client->Die();
        }
    });
    for (int i = 0; i < kTurns; ++i) Send(kEvent);
    registrations.join();
    Register(mClient, 5);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), testing::Contains("OnChannelConfigEvent 0 65 5").Times(1));
}

TEST(ChannelConfigWithoutPlatform, ForgetsItsClientAllTheSame) {
    const ScratchDirectory directory;
    LogCapture log;
    const sp<ChannelConfig> service = new ChannelConfig;
    const sp<RecordingConfigCallback> client = new RecordingConfigCallback;
    EXPECT_EQ(-1, static_cast<int32_t>(service->RegisterCallback(client, 5)));
    EXPECT_EQ(1u, client->Linked().size());
    EXPECT_EQ(-1, static_cast<int32_t>(service->UnregisterCallback()));
    EXPECT_THAT(client->Linked(), IsEmpty());
    TolmChannelConfigCallback(0, {'A'}, nullptr);
    EXPECT_THAT(client->Calls(), IsEmpty());
}

}  // namespace hbbtv::test
