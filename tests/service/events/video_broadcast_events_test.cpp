// From the platform's event to the client's callback: forwarding, registration and the client's death.

#include <IVideoBroadcastCallbackListener.h>
#include <cstdlib>
#include <cstring>

#include "VideoBroadcast.h"
#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "one_client.h"
#include "recording_client.h"

namespace hbbtv::test {

namespace {

using RecordingCallback = RecordingClient<vantorel::hardware::hbbtv::V1_0::IVideoBroadcastCallback>;

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::TolmVideoBroadcastHidlCallback;
using vantorel::hardware::hbbtv::implementation::VideoBroadcast;

constexpr char kTag[] = "[hidl_video_broadcast_wrapper_client]";
constexpr int64_t kVb = 0x1000;
constexpr int64_t kContext = 0xabc;
constexpr char kUnregister[] = "{\n\t\"method\" : 4,\n\t\"type\" : 3,\n\t\"vb_handle\" : \"0x1000\"\n}\n";

class VideoBroadcastEvents : public ServiceEvents<VideoBroadcast, RecordingCallback> {
  protected:
    static constexpr char kEvent[] = R"({"type": "videobroadcast", "event": 4})";
    static constexpr char kCall[] = "onVideoBroadcastEvent 4";

    VideoBroadcastEvents() : ServiceEvents(kTag) {}

    void Register(const sp<Client>& client) {
        ASSERT_EQ(static_cast<int32_t>(mService->RegisterCallback(kVb, client, kContext)), 0);
    }

    void RefuseNull() { EXPECT_EQ(static_cast<int32_t>(mService->RegisterCallback(kVb, nullptr, kContext)), -1); }
    void Unregister() { ASSERT_EQ(static_cast<int32_t>(mService->UnregisterCallback(kVb)), 0); }

    int DroppedByTheAdaptor() const { return mLog.Count(ANDROID_LOG_WARN, "[ipc_vb]", "m_cb is null"); }
};

INSTANTIATE_TYPED_TEST_SUITE_P(VideoBroadcastClient, OneClient, VideoBroadcastEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(VideoBroadcastClient, OneClientThatCanUnregister, VideoBroadcastEvents);

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

}  // namespace

TEST_P(VideoBroadcastEvent, ReachesTheRegisteredClient) {
    Register(mClient);
    Send(std::string(R"({"type": "videobroadcast", )") + GetParam().event + "}");
    EXPECT_THAT(mClient->Calls(), ElementsAre(GetParam().call));
}

INSTANTIATE_TEST_SUITE_P(Each, VideoBroadcastEvent, testing::ValuesIn(kEvents),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(VideoBroadcastEvents, CodesThatNoClientKnowsAreWarnedAboutAndReachNoMethod) {
    Register(mClient);
    for (const int code : {20, 23, -1, 2147483647}) {
        Send(R"({"type": "videobroadcast", "event": )" + std::to_string(code) + "}");
        EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, kTag, "wrong event type " + std::to_string(code)), 1) << mLog.Text();
    }
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(VideoBroadcastEvents, CodesWithoutValuesAlsoComeByTheReplyingPath) {
    Register(mClient);
    const std::string ok = "{\n\t\"ret\" : 0\n}\n";
    for (const int code : {17, 18, 19, 20, 21, 22}) {
        EXPECT_EQ(Ask(R"({"type": "videobroadcast", "context": "0xabc", "event": )" + std::to_string(code) + "}"), ok);
    }
    EXPECT_THAT(mClient->Calls(),
                ElementsAre("onVideoBroadcastEvent 17", "onVideoBroadcastEvent 18", "onVideoBroadcastEvent 19",
                            "onVideoBroadcastEvent 21", "onVideoBroadcastEvent 22"));
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, kTag, "wrong event type 20"), 1);
}

TEST_F(VideoBroadcastEvents, TextsWithZeroBytesArriveWhole) {
    Register(mClient);
    Send(R"({"type": "videobroadcast", "event": 8, "recordingId": "a\u0000b"})");
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
TEST_F(VideoBroadcastEvents, AreDroppedSilentlyWithoutAClientAndTheirTextsFreed) {
    TolmVideoBroadcastEventInfo info;
    memset(&info, 0, sizeof(info));
    info.recording.recordingId = {strdup("rec-1"), 5};
    TolmVideoBroadcastHidlCallback(TOLM_VB_EVENT_RECORDING, info, nullptr);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(VideoBroadcastEvents, AreTakenBackFromThePlatformByEachEndButNotByADeath) {
    Register(mClient);
    mPlatform.ForgetFrames();
    Unregister();
    EXPECT_THAT(Requests(), ElementsAre(kUnregister));
    Unregister();
    EXPECT_THAT(Requests(), ElementsAre(kUnregister, kUnregister));
    Register(mClient);
    mPlatform.ForgetFrames();
    mClient->Die();
    EXPECT_THAT(Requests(), IsEmpty());
}

TEST_F(VideoBroadcastEvents, AreDroppedByTheAdaptorAfterTheRegistrationsEnd) {
    Register(mClient);
    Unregister();
    Send(kEvent);
    EXPECT_EQ(DroppedByTheAdaptor(), 1);
}

TEST_F(VideoBroadcastEvents, AreDroppedByTheAdaptorAfterADeath) {
    Register(mClient);
    mLog.Clear();
    mClient->Die();
    EXPECT_EQ(mLog.Count(ANDROID_LOG_VERBOSE, "[ipc_vb]", "ENTER"), 1);  // ClearCallback
    Send(kEvent);
    EXPECT_EQ(DroppedByTheAdaptor(), 1);
}

TEST_F(VideoBroadcastEvents, ThePlatformsRefusalIsPassedOnAndTheClientRegisteredAllTheSame) {
    mPlatform.SetReply(R"({"ret": 6})");
    EXPECT_EQ(static_cast<int32_t>(mService->RegisterCallback(kVb, mClient, kContext)), 6);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
    EXPECT_EQ(static_cast<int32_t>(mService->UnregisterCallback(kVb)), 6);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(VideoBroadcastEvents, WithoutAnAdaptorNothingIsRegisteredAndTheEarlierClientStays) {
    Register(mClient);
    TolmVideoBroadcastAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    const sp<Client> second = new Client;
    EXPECT_EQ(static_cast<int32_t>(mService->RegisterCallback(kVb, second, kContext)), -1);
    EXPECT_THAT(second->Linked(), IsEmpty());
    EXPECT_EQ(mClient->Linked().size(), 1u);
    TolmVideoBroadcastHidlCallback(TOLM_VB_EVENT_PLAIN_4, {}, nullptr);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(VideoBroadcastEvents, WithoutAnAdaptorTheClientIsForgottenAllTheSame) {
    Register(mClient);
    TolmVideoBroadcastAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(static_cast<int32_t>(mService->UnregisterCallback(kVb)), -1);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    TolmVideoBroadcastHidlCallback(TOLM_VB_EVENT_PLAIN_4, {}, nullptr);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

}  // namespace hbbtv::test
