// From the platform's event to the client's callback: forwarding, registration and the client's death. The service runs
// in this process, the platform is at the other end of real sockets.

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "VideoBroadcast.h"
#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "log_capture.h"
#include "raw_socket.h"
#include "recording_callback.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::TolmVideoBroadcastHidlCallback;
using vantorel::hardware::hbbtv::implementation::VideoBroadcast;

constexpr char kTag[] = "[hidl_video_broadcast_wrapper_client]";
constexpr int64_t kVb = 0x1000;
constexpr int64_t kContext = 0xabc;

class VideoBroadcastEvents : public testing::Test {
  protected:
    void Register(const sp<RecordingCallback>& callback) {
        ASSERT_EQ(0, static_cast<int32_t>(mService->RegisterCallback(kVb, callback, kContext)));
    }

    // A one-way event, as it leaves the platform.
    void Send(const std::string& json) {
        if (mEvents == nullptr) {
            mEvents = std::make_unique<RawConnection>(RawConnection::To(mDirectory / "service_hbbtv_to_plugin_vb"));
        }
        ASSERT_TRUE(mEvents->Write(FrameBytes(kOneWay, 7, json)));
    }

    // The reply to an event that asks for one. Events before it have been handled by then.
    std::string Ask(const std::string& json) {
        RawConnection connection = RawConnection::To(mDirectory / "service_hbbtv_to_plugin_vb");
        EXPECT_TRUE(connection.Write(FrameBytes(kRequest, 7, json)));
        const auto reply = connection.ReadFrame();
        return reply ? reply->payload : "no reply";
    }

    // Whether the events sent so far have been handled: they are handled in order, on one connection.
    void Settle() {
        ASSERT_TRUE(mEvents->Write(FrameBytes(kRequest, 7, R"({"type": "none", "context": ""})")));
        ASSERT_TRUE(mEvents->ReadFrame().has_value());
    }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    FakePlatform mPlatform{"service_plugin_to_hbbtv_vb", R"({"ret": 0})"};
    const sp<VideoBroadcast> mService = new VideoBroadcast;
    const sp<RecordingCallback> mClient = new RecordingCallback;
    std::unique_ptr<RawConnection> mEvents;
};

struct EventCase {
    const char* name;
    const char* event;  // members besides "type"
    const char* call;
};

void PrintTo(const EventCase& row, std::ostream* out) {
    *out << row.name;
}

const EventCase kEvents[] = {
    {"ChannelError", R"("event": 0, "channelHandle": "0xf0000001", "errorState": 5)",
     "onChannelChangeError 4026531841 5"},
    {"PlayState", R"("event": 1, "state": 2, "error": 100)", "onPlayStateChange 2 100"},
    {"ChannelChanged", R"("event": 2, "channelHandle": "0x10", "viewerChannelHandle": "0xffffffff", "quiet": 1)",
     "onChannelChangeSucceeded 16 4294967295 1"},
    {"FullScreen", R"("event": 3, "isFullScreen": 1)", "onFullScreenChange 1"},
    {"Plain4", R"("event": 4)", "onVideoBroadcastEvent 4"},
    {"Plain5", R"("event": 5)", "onVideoBroadcastEvent 5"},
    {"PlaySpeed", R"("event": 6, "speed": -2.5)", "onPlaySpeedChanged -2.5"},
    {"PlayPosition", R"("event": 7, "position": 90000)", "onPlayPositionChanged 90000"},
    {"Recording", R"("event": 8, "state": 4, "error": 1, "recordingId": "rec-1")", "onRecordingEvent 4 1 rec-1"},
    {"Plain9", R"("event": 9)", "onVideoBroadcastEvent 9"},
    {"Plain10", R"("event": 10)", "onVideoBroadcastEvent 10"},
    {"ComponentType11", R"("event": 11, "componentType": 1)", "onComponentType11 1"},
    {"ParentalRating", R"("event": 12, "contentID": "c", "PRCollectionHandle": "0x20", "drmSystemID": "d")",
     "onParentalRating c 32 d"},
    {"ParentalRatingBlocked",
     R"("event": 13, "contentID": "c", "PRCollectionHandle": "0x20", "drmSystemID": "d", "blocked": true)",
     "onParentalRatingBlocked c 32 d 1"},
    {"DrmRightsError", R"("event": 14, "error": 1, "contentID": "c", "drmSystemId": "d", "rightsIssuerUrl": "u")",
     "onDrmRightsError 1 c d u"},
    {"ComponentType15", R"("event": 15, "componentType": 2)", "onComponentType15 2"},
    {"StreamEvent",
     R"("event": 16, "url": "dvb://1", "eventName": "go", "data": "4142", "textLen": 2, "text0": 65, "text1": 66,
        "status": "trigger")",
     "onStreamEvent dvb://1 go 4142 AB trigger"},
    {"Code17", R"("event": 17)", "onVideoBroadcastEvent 17"},
    {"Code18", R"("event": 18)", "onVideoBroadcastEvent 18"},
    {"Code19", R"("event": 19)", "onVideoBroadcastEvent 19"},
    {"Code21", R"("event": 21)", "onVideoBroadcastEvent 21"},
    {"Code22", R"("event": 22)", "onVideoBroadcastEvent 22"},
};

class VideoBroadcastEvent : public VideoBroadcastEvents, public testing::WithParamInterface<EventCase> {};

TEST_P(VideoBroadcastEvent, ReachesTheRegisteredClient) {
    Register(mClient);
    Send(std::string(R"({"type": "videobroadcast", )") + GetParam().event + "}");
    Settle();
    EXPECT_THAT(mClient->Calls(), ElementsAre(GetParam().call));
}

INSTANTIATE_TEST_SUITE_P(Each, VideoBroadcastEvent, testing::ValuesIn(kEvents),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(VideoBroadcastEvents, CodesThatNoClientKnowsAreWarnedAboutAndReachNoMethod) {
    Register(mClient);
    for (const int code : {20, 23, -1, 2147483647}) {
        Send(R"({"type": "videobroadcast", "event": )" + std::to_string(code) + "}");
        Settle();
        EXPECT_EQ(1, mLog.Count(ANDROID_LOG_WARN, kTag, "wrong event type " + std::to_string(code))) << mLog.Text();
    }
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(VideoBroadcastEvents, CodesWithoutValuesAlsoComeByTheReplyingPath) {
    Register(mClient);
    const std::string ok = "{\n\t\"ret\" : 0\n}\n";
    for (const int code : {17, 18, 19, 20, 21, 22}) {
        EXPECT_EQ(ok, Ask(R"({"type": "videobroadcast", "context": "0xabc", "event": )" + std::to_string(code) + "}"));
    }
    EXPECT_THAT(mClient->Calls(),
                ElementsAre("onVideoBroadcastEvent 17", "onVideoBroadcastEvent 18", "onVideoBroadcastEvent 19",
                            "onVideoBroadcastEvent 21", "onVideoBroadcastEvent 22"));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_WARN, kTag, "wrong event type 20"));
}

TEST_F(VideoBroadcastEvents, TextsWithZeroBytesArriveWhole) {
    Register(mClient);
    Send(R"({"type": "videobroadcast", "event": 8, "recordingId": "a\u0000b"})");
    Settle();
    EXPECT_THAT(mClient->Calls(), ElementsAre(std::string("onRecordingEvent 0 0 a\0b", 24)));
}

TEST_F(VideoBroadcastEvents, ARecordWithoutTextsGivesEmptyOnes) {
    Register(mClient);
    TolmVideoBroadcastEventInfo info;
    memset(&info, 0, sizeof(info));
    TolmVideoBroadcastHidlCallback(TOLM_VB_EVENT_STREAM_EVENT, info, nullptr);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onStreamEvent     "));
}

// The address sanitizer's leak check is what fails when the text is kept.
TEST_F(VideoBroadcastEvents, WithoutAClientARecordIsDroppedSilentlyAndItsTextsAreFreed) {
    TolmVideoBroadcastEventInfo info;
    memset(&info, 0, sizeof(info));
    info.recording.recordingId = {strdup("rec-1"), 5};
    TolmVideoBroadcastHidlCallback(TOLM_VB_EVENT_RECORDING, info, nullptr);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(VideoBroadcastEvents, ANullCallbackIsRefusedAndTheEarlierOneStays) {
    Register(mClient);
    mPlatform.ForgetFrames();
    EXPECT_EQ(-1, static_cast<int32_t>(mService->RegisterCallback(kVb, nullptr, kContext)));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, kTag, "cb is null"));
    EXPECT_THAT(mPlatform.Frames(), IsEmpty());
    Send(R"({"type": "videobroadcast", "event": 4})");
    Settle();
    EXPECT_THAT(mClient->Calls(), ElementsAre("onVideoBroadcastEvent 4"));
}

TEST_F(VideoBroadcastEvents, ANullClientIsNotMonitored) {
    mService->StartMonitor(nullptr);
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::StartMonitor"));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, kTag, "cb is null"));
    mService->StopMonitor(nullptr);
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(2, mLog.Count(ANDROID_LOG_ERROR, kTag, "cb is null"));
}

TEST_F(VideoBroadcastEvents, RegistrationWatchesTheClientUntilItIsTakenBack) {
    Register(mClient);
    EXPECT_EQ(1u, mClient->Linked().size());
    EXPECT_EQ(0u, mClient->Cookie());
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::StartMonitor"));

    EXPECT_EQ(0, static_cast<int32_t>(mService->UnregisterCallback(kVb)));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::StopMonitor"));
    Send(R"({"type": "videobroadcast", "event": 4})");
    Settle();
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_WARN, "[ipc_vb]", "m_cb is null"));
}

TEST_F(VideoBroadcastEvents, TakingBackWhatWasNotRegisteredSaysSoAndStillAsksThePlatform) {
    EXPECT_EQ(0, static_cast<int32_t>(mService->UnregisterCallback(kVb)));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, kTag, "cb is null"));
    EXPECT_EQ(1u, mPlatform.Frames().size());
}

TEST_F(VideoBroadcastEvents, ASecondRegistrationReplacesTheFirst) {
    const sp<RecordingCallback> second = new RecordingCallback;
    Register(mClient);
    Register(second);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    Send(R"({"type": "videobroadcast", "event": 4})");
    Settle();
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(second->Calls(), ElementsAre("onVideoBroadcastEvent 4"));
}

TEST_F(VideoBroadcastEvents, RegisteringTheSameClientAgainLeavesOneLink) {
    Register(mClient);
    Register(mClient);
    EXPECT_EQ(1u, mClient->Linked().size());
    mClient->Die();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::serviceDied - client died"));
}

TEST_F(VideoBroadcastEvents, TheDeathOfTheClientEndsTheDeliveryWithoutTellingThePlatform) {
    Register(mClient);
    mPlatform.ForgetFrames();
    mClient->Die();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "ENTER"));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "LEAVE"));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::serviceDied - client died"));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(2, mLog.Count(ANDROID_LOG_VERBOSE, "[ipc_vb]", "ENTER"));  // RegisterCallback, ClearCallback
    EXPECT_THAT(mPlatform.Frames(), IsEmpty());
    Send(R"({"type": "videobroadcast", "event": 4})");
    Settle();
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_WARN, "[ipc_vb]", "m_cb is null"));

    const sp<RecordingCallback> next = new RecordingCallback;
    Register(next);
    EXPECT_EQ(1u, next->Linked().size());
    Send(R"({"type": "videobroadcast", "event": 5})");
    Settle();
    EXPECT_THAT(next->Calls(), ElementsAre("onVideoBroadcastEvent 5"));
}

TEST_F(VideoBroadcastEvents, TheLateDeathNoticeOfAReplacedClientLeavesItsSuccessorAlone) {
    const sp<RecordingCallback> second = new RecordingCallback;
    Register(mClient);
    const auto recipient = mClient->Linked().at(0);
    Register(second);
    recipient->serviceDied(0, android::wp<android::hidl::base::V1_0::IBase>(mClient.get()));
    EXPECT_EQ(0, mLog.Count(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::serviceDied - client died"));
    Send(R"({"type": "videobroadcast", "event": 4})");
    Settle();
    EXPECT_THAT(second->Calls(), ElementsAre("onVideoBroadcastEvent 4"));
}

TEST_F(VideoBroadcastEvents, ADeathNoticeAfterTheServiceHasGoneTellsNobody) {
    Register(mClient);
    const auto recipient = mClient->Linked().at(0);
    sp<VideoBroadcast> passing = new VideoBroadcast;
    const sp<RecordingCallback> itsClient = new RecordingCallback;
    passing->StartMonitor(itsClient);
    const auto itsRecipient = itsClient->Linked().at(0);
    passing.clear();
    itsRecipient->serviceDied(0, android::wp<android::hidl::base::V1_0::IBase>(itsClient.get()));
    EXPECT_EQ(0, mLog.Count(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::serviceDied - client died"));
}

TEST_F(VideoBroadcastEvents, RegistrationsAndDeathsBesideEventsDoNotDisturbEachOther) {
    constexpr int kTurns = 200;
    Register(mClient);
    std::thread registrations([this] {
        for (int i = 0; i < kTurns; ++i) {
            const sp<RecordingCallback> client = new RecordingCallback;
            Register(client);
            client->Die();
        }
    });
    for (int i = 0; i < kTurns; ++i) Send(R"({"type": "videobroadcast", "event": 8, "recordingId": "r"})");
    Settle();
    registrations.join();
    Register(mClient);
    Send(R"({"type": "videobroadcast", "event": 5})");
    Settle();
    EXPECT_EQ("onVideoBroadcastEvent 5", mClient->Calls().back());
}

}  // namespace

}  // namespace hbbtv::test
