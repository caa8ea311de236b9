// From the platform's event to the client of AV control: forwarding, registration and the client's death.

#include <IAVControlCallbackListener.h>

#include "AVControl.h"
#include "ipc/src/plugin/tolm_av_control_adaptor_ipc.h"
#include "one_client.h"
#include "recording_client.h"

namespace hbbtv::test {

namespace {

using RecordingCallback = RecordingClient<vantorel::hardware::hbbtv::V1_0::IAVControlCallback>;

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::AVControl;
using vantorel::hardware::hbbtv::implementation::TolmAVControlComponentCallback;

constexpr char kNoClient[] = "TolmAVControlComponentCallback callback null";

class AVControlEvents : public OneClientEvents<AVControl, RecordingCallback> {
  protected:
    static constexpr char kEvent[] = R"({"method": 1, "component_type": 2, "component_index": 5})";
    static constexpr char kCall[] = "onComponentSelect 1 2 5";

    static constexpr auto& kReceived = kCall;
    static constexpr bool kPassesOnTheStatus = false;  // the platform is not asked

    AVControlEvents() : OneClientEvents("[hidl_av_control_wrapper_client]") {}

    int TryRegister(const sp<Client>& client) override { return mService->RegisterCallback(client, 9); }
    int TryUnregister() override { return mService->UnregisterCallback(); }

    static void Receive() { TolmAVControlComponentCallback(1, 2, 5); }

    int DroppedByTheAdaptor() const { return mLog.Count(ANDROID_LOG_DEBUG, "[ipc_avcontrol]", "callback is null"); }
};

INSTANTIATE_TYPED_TEST_SUITE_P(AVControlClient, OneClient, AVControlEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(AVControlClient, OneClientThatCanUnregister, AVControlEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(AVControlClient, OneClientOfAnAdaptor, AVControlEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(AVControlClient, OneClientThatLeavesAnAdaptor, AVControlEvents);

}  // namespace

TEST_F(AVControlEvents, ReachTheRegisteredClientWithoutARequest) {
    Register(mClient);
    Send(kEvent);
    Send(R"({"method": 1, "component_type": -7, "component_index": -1})");
    Send(R"({"method": 2, "component_type": 2, "component_index": 5})");
    Send(R"({"method": 1})");
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall, "onComponentSelect 1 -7 -1", "onComponentSelect 1 0 0"));
    Unregister();
    EXPECT_EQ(mPlatform.Connections(), 0);
}

TEST_F(AVControlEvents, FailWithALogLineWithoutAClient) {
    EXPECT_EQ(TolmAVControlComponentCallback(1, 2, 5), -1);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kNoClient), 1);
    Register(mClient);
    EXPECT_EQ(TolmAVControlComponentCallback(3, 2, 5), 0);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kNoClient), 1);
    EXPECT_THAT(mClient->Calls(), ElementsAre("onComponentSelect 3 2 5"));
}

TEST_F(AVControlEvents, AreDroppedByTheAdaptorAfterTheRegistrationsEnd) {
    Register(mClient);
    Unregister();
    Send(kEvent);
    EXPECT_EQ(DroppedByTheAdaptor(), 1);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kNoClient), 0);
}

TEST_F(AVControlEvents, AreDroppedByTheAdaptorAfterADeathWithoutARequest) {
    Register(mClient);
    mClient->Die();
    Send(kEvent);
    EXPECT_EQ(DroppedByTheAdaptor(), 1);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kNoClient), 0);
    EXPECT_EQ(mPlatform.Connections(), 0);
}

}  // namespace hbbtv::test
