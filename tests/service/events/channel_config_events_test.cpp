// From the platform's event to the client of the channel configuration: forwarding, registration and the client's
// death.

#include <IChannelConfigCallbackListener.h>

#include "ChannelConfig.h"
#include "ipc/src/plugin/tolm_channel_config_adaptor_ipc.h"
#include "one_client.h"
#include "recording_client.h"

namespace hbbtv::test {

namespace {

using RecordingCallback = RecordingClient<vantorel::hardware::hbbtv::V1_0::IChannelConfigCallback>;

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::ChannelConfig;
using vantorel::hardware::hbbtv::implementation::TolmChannelConfigCallback;

constexpr char kTag[] = "[hidl_video_broadcast_wrapper_client]";
constexpr int64_t kContext = 0x7777777780000abc;  // the low half counts
constexpr char kUnregister[] = "{\n\t\"method\" : 1,\n\t\"type\" : 19\n}\n";

class ChannelConfigEvents : public OneClientEvents<ChannelConfig, RecordingCallback> {
  protected:
    static constexpr char kEvent[] = R"({"event": 0, "reserved": "A"})";
    static constexpr char kCall[] = "OnChannelConfigEvent 0 65 2147486396";

    static constexpr char kCallWithoutContext[] = "OnChannelConfigEvent 0 65 ";
    static constexpr char kReceived[] = "OnChannelConfigEvent 0 65 0";
    static constexpr bool kPassesOnTheStatus = true;

    ChannelConfigEvents() : OneClientEvents(kTag) {}

    int TryRegister(const sp<Client>& client) override { return TryRegister(client, kContext); }
    int TryRegister(const sp<Client>& client, int64_t context) { return mService->RegisterCallback(client, context); }
    int TryUnregister() override { return mService->UnregisterCallback(); }

    static void Receive() { TolmChannelConfigCallback(0, {'A'}, nullptr); }
};

INSTANTIATE_TYPED_TEST_SUITE_P(ChannelConfigClient, OneClient, ChannelConfigEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(ChannelConfigClient, OneClientThatCanUnregister, ChannelConfigEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(ChannelConfigClient, OneClientOfAnAdaptor, ChannelConfigEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(ChannelConfigClient, OneClientThatLeavesAnAdaptor, ChannelConfigEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(ChannelConfigClient, OneClientOfThePlatform, ChannelConfigEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(ChannelConfigClient, OneClientWithAContext, ChannelConfigEvents);

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

TEST_F(ChannelConfigEvents, GiveTheContextWithAZeroHighHalf) {
    ASSERT_EQ(TryRegister(mClient, -1), 0);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre("OnChannelConfigEvent 0 65 4294967295"));
}

TEST_F(ChannelConfigEvents, AreDroppedSilentlyWithoutAClient) {
    Unregister();
    mLog.Clear();
    Send(kEvent);
    Receive();
    EXPECT_EQ(Logged(ANDROID_LOG_WARN, "reserved is empty"), 0);
    for (const LogLine& line : mLog.Lines()) EXPECT_NE(line.tag, kTag) << line.text;
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

TEST_F(ChannelConfigEvents, AreUnregisteredAtThePlatformByTheClientAndByItsDeath) {
    Register(mClient);
    mPlatform.ForgetFrames();
    Unregister();
    EXPECT_THAT(Requests(), ElementsAre(kUnregister));
    Unregister();
    EXPECT_THAT(Requests(), ElementsAre(kUnregister, kUnregister));
    Register(mClient);
    mPlatform.ForgetFrames();
    mClient->Die();
    EXPECT_THAT(Requests(), ElementsAre(kUnregister));
}

TEST(ChannelConfigWithoutPlatform, ReleasesItsClientAnyway) {
    const ScratchDirectory directory;
    LogCapture log;
    const sp<ChannelConfig> service = new ChannelConfig;
    const sp<RecordingCallback> client = new RecordingCallback;
    EXPECT_EQ(static_cast<int32_t>(service->RegisterCallback(client, 5)), -1);
    EXPECT_EQ(client->Linked().size(), 1u);
    EXPECT_EQ(static_cast<int32_t>(service->UnregisterCallback()), -1);
    EXPECT_THAT(client->Linked(), IsEmpty());
    TolmChannelConfigCallback(0, {'A'}, nullptr);
    EXPECT_THAT(client->Calls(), IsEmpty());
}

}  // namespace hbbtv::test
