// From the platform's event to the client of AV control: forwarding, registration and the client's death. The service
// runs in this process, the platform is at the other end of real sockets.

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "AVControl.h"
#include "event_connection.h"
#include "ipc/src/plugin/tolm_av_control_adaptor_ipc.h"
#include "log_capture.h"
#include "method_rows.h"
#include "recording_av_control_callback.h"

namespace hbbtv::test {

namespace {

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::AVControl;
using vantorel::hardware::hbbtv::implementation::TolmAVControlComponentCallback;
using IBase = android::hidl::base::V1_0::IBase;

constexpr char kTag[] = "[hidl_av_control_wrapper_client]";
constexpr char kEvent[] = R"({"method": 1, "component_type": 2, "component_index": 5})";
constexpr char kCall[] = "onComponentSelect 1 2 5";
constexpr char kNoClient[] = "TolmAVControlComponentCallback callback null";
constexpr char kNoReceiver[] = "callback is null";

class AVControlEvents : public testing::Test {
  protected:
    void Register(const sp<RecordingAVControlCallback>& callback) {
        ASSERT_EQ(0, static_cast<int32_t>(mService->RegisterCallback(callback, 9)));
    }

    void Unregister() { ASSERT_EQ(0, static_cast<int32_t>(mService->UnregisterCallback())); }

    // One-way events, as they leave the platform, until they have been handled.
    void Send(const std::string& json) {
        if (mEvents == nullptr) {
            mEvents = std::make_unique<EventConnection>(mDirectory / "service_hbbtv_to_plugin_av_ctrl", 19);
        }
        ASSERT_TRUE(mEvents->Send({json}));
    }

    int Logged(int priority, const char* message) const { return mLog.Count(priority, kTag, message); }
    int DroppedByTheAdaptor() const { return mLog.Count(ANDROID_LOG_DEBUG, "[ipc_avcontrol]", kNoReceiver); }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    FakePlatform mPlatform{"service_plugin_to_hbbtv_av_ctrl", R"({"ret": 0})"};
    const sp<AVControl> mService = new AVControl;
    const sp<RecordingAVControlCallback> mClient = new RecordingAVControlCallback;
    std::unique_ptr<EventConnection> mEvents;
};

}  // namespace

TEST_F(AVControlEvents, ReachTheRegisteredClientAndThePlatformIsNotTold) {
    Register(mClient);
    Send(kEvent);
    Send(R"({"method": 1, "component_type": -7, "component_index": -1})");
    Send(R"({"method": 2, "component_type": 2, "component_index": 5})");
    Send(R"({"method": 1})");
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall, "onComponentSelect 1 -7 -1", "onComponentSelect 1 0 0"));
    Unregister();
    EXPECT_EQ(0, mPlatform.Connections());
}

TEST_F(AVControlEvents, GiveMinusOneWithALineInTheLogWithoutAClient) {
    EXPECT_EQ(-1, TolmAVControlComponentCallback(1, 2, 5));
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, kNoClient));
    Register(mClient);
    EXPECT_EQ(0, TolmAVControlComponentCallback(3, 2, 5));
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, kNoClient));
    EXPECT_THAT(mClient->Calls(), ElementsAre("onComponentSelect 3 2 5"));
}

TEST_F(AVControlEvents, ANullCallbackIsRefusedAndTheEarlierOneStays) {
    EXPECT_EQ(-1, static_cast<int32_t>(mService->RegisterCallback(nullptr, 1)));
    Register(mClient);
    EXPECT_EQ(-1, static_cast<int32_t>(mService->RegisterCallback(nullptr, 1)));
    EXPECT_EQ(2, Logged(ANDROID_LOG_ERROR, "cb is null"));
    EXPECT_EQ(1u, mClient->Linked().size());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(AVControlEvents, RegistrationWatchesTheClientUntilItIsTakenBack) {
    Register(mClient);
    EXPECT_EQ(1u, mClient->Linked().size());
    EXPECT_EQ(0u, mClient->Cookie());
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StartMonitor"));
    EXPECT_EQ(0, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StopMonitor"));
    Unregister();
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(0, Logged(ANDROID_LOG_ERROR, "cb is null"));
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(1, DroppedByTheAdaptor());
}

TEST_F(AVControlEvents, TakingBackWhatWasNotRegisteredSaysSo) {
    Unregister();
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(1, Logged(ANDROID_LOG_ERROR, "cb is null"));
}

TEST_F(AVControlEvents, ASecondRegistrationReplacesTheFirst) {
    const sp<RecordingAVControlCallback> second = new RecordingAVControlCallback;
    Register(mClient);
    Register(second);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(1u, second->Linked().size());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(second->Calls(), ElementsAre(kCall));
}

TEST_F(AVControlEvents, RegisteringTheSameClientAgainLeavesOneDeathNotice) {
    Register(mClient);
    Register(mClient);
    EXPECT_EQ(1u, mClient->Linked().size());
    mClient->Die();
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::serviceDied - client died"));
}

TEST_F(AVControlEvents, TheDeathOfTheClientEndsTheDeliveryInTheAdaptorToo) {
    Register(mClient);
    mClient->Die();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "ENTER"));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "LEAVE"));
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::serviceDied - client died"));
    EXPECT_EQ(1, Logged(ANDROID_LOG_INFO, "ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(0, Logged(ANDROID_LOG_ERROR, "cb is null"));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(1, DroppedByTheAdaptor());
    EXPECT_EQ(0, Logged(ANDROID_LOG_INFO, kNoClient));
    EXPECT_EQ(0, mPlatform.Connections());

    const sp<RecordingAVControlCallback> next = new RecordingAVControlCallback;
    Register(next);
    Send(kEvent);
    EXPECT_THAT(next->Calls(), ElementsAre(kCall));
}

TEST_F(AVControlEvents, TheLateDeathNoticeOfAReplacedClientLeavesItsSuccessorAlone) {
    const sp<RecordingAVControlCallback> second = new RecordingAVControlCallback;
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

TEST_F(AVControlEvents, WithoutAnAdaptorNothingIsRegisteredAndTheEarlierClientStays) {
    Register(mClient);
    TolmAVControlAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    const sp<RecordingAVControlCallback> second = new RecordingAVControlCallback;
    EXPECT_EQ(-1, static_cast<int32_t>(mService->RegisterCallback(second, 5)));
    EXPECT_THAT(second->Linked(), IsEmpty());
    EXPECT_EQ(0, TolmAVControlComponentCallback(1, 2, 5));
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(AVControlEvents, WithoutAnAdaptorTheClientIsForgottenAllTheSame) {
    Register(mClient);
    TolmAVControlAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(-1, static_cast<int32_t>(mService->UnregisterCallback()));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(-1, TolmAVControlComponentCallback(1, 2, 5));
}

TEST_F(AVControlEvents, RegistrationsAndDeathsBesideEventsDoNotDisturbEachOther) {
    constexpr int kTurns = 100;
    Register(mClient);
    std::thread registrations([this] {
        for (int i = 0; i < kTurns; ++i) {
            const sp<RecordingAVControlCallback> client = new RecordingAVControlCallback;
            Register(client);
            client->Die();
            Register(client);
            Unregister();
        }
    });
    for (int i = 0; i < kTurns; ++i) Send(kEvent);
    registrations.join();
    const sp<RecordingAVControlCallback> last = new RecordingAVControlCallback;
    Register(last);
    Send(kEvent);
    EXPECT_THAT(last->Calls(), ElementsAre(kCall));
}

// Each death meets a registration of the next client; that one must be served whatever the order.
TEST_F(AVControlEvents, ADeathBesideARegistrationLeavesTheNewClientServed) {
    for (int i = 0; i < 200; ++i) {
        const sp<RecordingAVControlCallback> dying = new RecordingAVControlCallback;
        const sp<RecordingAVControlCallback> next = new RecordingAVControlCallback;
        Register(dying);
        std::thread death([&] { dying->Die(); });
        Register(next);
        death.join();
        Send(kEvent);
        EXPECT_THAT(next->Calls(), ElementsAre(kCall));
    }
}

}  // namespace hbbtv::test
