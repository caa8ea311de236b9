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

class AVControlEvents : public ServiceEvents<AVControl, RecordingCallback> {
  protected:
    static constexpr char kEvent[] = R"({"method": 1, "component_type": 2, "component_index": 5})";
    static constexpr char kCall[] = "onComponentSelect 1 2 5";

    AVControlEvents() : ServiceEvents("[hidl_av_control_wrapper_client]") {}

    void Register(const sp<Client>& client) {
        ASSERT_EQ(static_cast<int32_t>(mService->RegisterCallback(client, 9)), 0);
    }

    void RefuseNull() { EXPECT_EQ(static_cast<int32_t>(mService->RegisterCallback(nullptr, 9)), -1); }
    void Unregister() { ASSERT_EQ(static_cast<int32_t>(mService->UnregisterCallback()), 0); }

    int DroppedByTheAdaptor() const { return mLog.Count(ANDROID_LOG_DEBUG, "[ipc_avcontrol]", "callback is null"); }
};

INSTANTIATE_TYPED_TEST_SUITE_P(AVControlClient, OneClient, AVControlEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(AVControlClient, OneClientThatCanUnregister, AVControlEvents);

}  // namespace

TEST_F(AVControlEvents, ReachTheRegisteredClientAndThePlatformIsNotTold) {
    Register(mClient);
    Send(kEvent);
    Send(R"({"method": 1, "component_type": -7, "component_index": -1})");
    Send(R"({"method": 2, "component_type": 2, "component_index": 5})");
    Send(R"({"method": 1})");
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall, "onComponentSelect 1 -7 -1", "onComponentSelect 1 0 0"));
    Unregister();
    EXPECT_EQ(mPlatform.Connections(), 0);
}

TEST_F(AVControlEvents, GiveMinusOneWithALineInTheLogWithoutAClient) {
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

TEST_F(AVControlEvents, AreDroppedByTheAdaptorAfterADeathThatThePlatformIsNotToldOf) {
    Register(mClient);
    mClient->Die();
    Send(kEvent);
    EXPECT_EQ(DroppedByTheAdaptor(), 1);
    EXPECT_EQ(Logged(ANDROID_LOG_INFO, kNoClient), 0);
    EXPECT_EQ(mPlatform.Connections(), 0);
}

TEST_F(AVControlEvents, WithoutAnAdaptorNothingIsRegisteredAndTheEarlierClientStays) {
    Register(mClient);
    TolmAVControlAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    const sp<Client> second = new Client;
    EXPECT_EQ(static_cast<int32_t>(mService->RegisterCallback(second, 5)), -1);
    EXPECT_THAT(second->Linked(), IsEmpty());
    EXPECT_EQ(mClient->Linked().size(), 1u);
    EXPECT_EQ(TolmAVControlComponentCallback(1, 2, 5), 0);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(AVControlEvents, WithoutAnAdaptorTheClientIsForgottenAllTheSame) {
    Register(mClient);
    TolmAVControlAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(static_cast<int32_t>(mService->UnregisterCallback()), -1);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(TolmAVControlComponentCallback(1, 2, 5), -1);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
}

}  // namespace hbbtv::test
