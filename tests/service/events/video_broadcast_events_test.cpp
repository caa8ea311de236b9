// From the platform's event to the client's callback: forwarding, registration and the client's death.

#include <IVideoBroadcastCallbackListener.h>
#include <cstdlib>
#include <cstring>

#include "VideoBroadcast.h"
#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "one_client.h"
#include "protocol_events.h"
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

class VideoBroadcastEvents : public OneClientEvents<VideoBroadcast, RecordingCallback> {
  protected:
    static constexpr char kEvent[] = R"({"type": "videobroadcast", "event": 4})";
    static constexpr char kCall[] = "onVideoBroadcastEvent 4";

    static constexpr auto& kReceived = kCall;
    static constexpr bool kPassesOnTheStatus = true;

    VideoBroadcastEvents() : OneClientEvents(kTag) {}

    int TryRegister(const sp<Client>& client) override { return mService->RegisterCallback(kVb, client, kContext); }
    int TryUnregister() override { return mService->UnregisterCallback(kVb); }

    static void Receive() { TolmVideoBroadcastHidlCallback(TOLM_VB_EVENT_PLAIN_4, {}, nullptr); }

    int DroppedByTheAdaptor() const { return mLog.Count(ANDROID_LOG_WARN, "[ipc_vb]", "m_cb is null"); }
};

INSTANTIATE_TYPED_TEST_SUITE_P(VideoBroadcastClient, OneClient, VideoBroadcastEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(VideoBroadcastClient, OneClientThatCanUnregister, VideoBroadcastEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(VideoBroadcastClient, OneClientOfAnAdaptor, VideoBroadcastEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(VideoBroadcastClient, OneClientThatLeavesAnAdaptor, VideoBroadcastEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(VideoBroadcastClient, OneClientOfThePlatform, VideoBroadcastEvents);

}  // namespace

TEST_F(VideoBroadcastEvents, OfEveryKindReachTheRegisteredClient) {
    Register(mClient);
    std::vector<std::string> calls;
    for (const Json::Value& definition : UnderTest().Wire().protocol["events"]) {
        if (definition["object"] != "videobroadcast") continue;
        const ProtocolEvent event("videobroadcast:" + definition["code"].asString());
        Json::Value arguments(Json::arrayValue);
        for (const std::string& name : ArgumentNames(definition["members"])) arguments.append(event.Values()[name]);
        if (arguments.empty()) arguments.append(definition["code"]);
        Send(event.Text());
        calls.push_back(CallLine("IVideoBroadcastCallback", definition["callback"].asCString(), arguments));
    }
    EXPECT_EQ(calls.size(), 22u);
    EXPECT_EQ(mClient->Calls(), calls);
}

TEST_F(VideoBroadcastEvents, UnknownCodesAreDroppedWithAWarning) {
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

TEST_F(VideoBroadcastEvents, StringsMayHaveZeroBytes) {
    Register(mClient);
    Send(R"({"type": "videobroadcast", "event": 8, "recordingId": "a\u0000b"})");
    EXPECT_THAT(mClient->Calls(), ElementsAre(std::string("onRecordingEvent 0 0 a\0b", 24)));
}

TEST_F(VideoBroadcastEvents, NullStringsAreEmpty) {
    Register(mClient);
    TolmVideoBroadcastEventInfo info;
    memset(&info, 0, sizeof(info));
    TolmVideoBroadcastHidlCallback(TOLM_VB_EVENT_STREAM_EVENT, info, nullptr);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onStreamEvent     "));
}

// The address sanitizer's leak check is what fails when the text is kept.
TEST_F(VideoBroadcastEvents, AreDroppedSilentlyWithoutAClientAndTheirStringsFreed) {
    TolmVideoBroadcastEventInfo info;
    memset(&info, 0, sizeof(info));
    info.recording.recordingId = {strdup("rec-1"), 5};
    TolmVideoBroadcastHidlCallback(TOLM_VB_EVENT_RECORDING, info, nullptr);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(VideoBroadcastEvents, AreUnregisteredAtThePlatformByTheClientButNotByItsDeath) {
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

}  // namespace hbbtv::test
