// From the platform's file event to the client: forwarding, registration and the client's death. The service runs in
// this process, the platform is at the other end of real sockets.

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>

#include "Dsmcc.h"
#include "ipc/src/dsmcc/tolm_dsmcc_adaptor_ipc.h"
#include "log_capture.h"
#include "method_rows.h"
#include "recording_dsmcc_callback.h"

namespace hbbtv::test {

namespace {

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::Dsmcc;
using vantorel::hardware::hbbtv::implementation::TolmBacBrowserDSMCCFileCallback;

constexpr char kMonitorTag[] = "[hidl_video_broadcast_wrapper_client]";
constexpr char kTag[] = "[hidl_dsmcc_wrapper_client]";
constexpr char kEvent[] = R"({"method": 4, "event": 1, "context": "0x80000abc", "url": "dvb://1", "filePath": "/f"})";
constexpr char kCall[] = "OnDsmccFileEvent 2 '' /f 2147486396";
constexpr char kNoClient[] = "IDsmccCallback callback is null";

class DsmccEvents : public testing::Test {
  protected:
    void Register(const sp<RecordingDsmccCallback>& callback) {
        ASSERT_EQ(0, static_cast<int32_t>(mService->RegisterCallback(callback)));
    }

    // A one-way event, as it leaves the platform, until it has been handled: messages of a connection are handled in
    // order, and the second is answered.
    void Send(const std::string& json) {
        if (mEvents == nullptr) {
            mEvents = std::make_unique<RawConnection>(RawConnection::To(mDirectory / "service_hbbtv_to_dsmcc"));
        }
        ASSERT_TRUE(mEvents->Write(FrameBytes(kOneWay, 2, json)));
        ASSERT_TRUE(mEvents->Write(FrameBytes(kRequest, 2, "{}")));
        ASSERT_TRUE(mEvents->ReadFrame().has_value());
    }

    int Monitored(const char* message) const { return mLog.Count(ANDROID_LOG_INFO, kMonitorTag, message); }
    int Null() const { return mLog.Count(ANDROID_LOG_ERROR, kMonitorTag, "cb is null"); }
    int NoClient() const { return mLog.Count(ANDROID_LOG_ERROR, kTag, kNoClient); }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    sp<Dsmcc> mService = new Dsmcc;
    const sp<RecordingDsmccCallback> mClient = new RecordingDsmccCallback;
    std::unique_ptr<RawConnection> mEvents;
};

}  // namespace

TEST_F(DsmccEvents, ReachTheRegisteredClientWithoutTheirUrl) {
    Register(mClient);
    Send(kEvent);
    Send(R"({"method": 4, "event": 0, "context": "0x1", "filePath": "/g"})");
    Send(R"({"method": 4, "event": 2, "context": "", "filePath": "/h"})");
    Send(R"({"method": 4, "event": 3, "context": "0xffffffff", "filePath": ""})");
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall, "OnDsmccFileEvent 0 '' /g 1", "OnDsmccFileEvent 4 '' /h 0",
                                              "OnDsmccFileEvent 1 ''  4294967295"));
    EXPECT_EQ(0, NoClient());
}

TEST_F(DsmccEvents, GiveTheContextWithAZeroHighHalf) {
    Register(mClient);
    Send(R"({"method": 4, "event": 1, "context": "0x1234567880000abc", "filePath": "/f"})");
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(DsmccEvents, ThatTheAdaptorDropsReachNobody) {
    Register(mClient);
    Send(R"({"method": 4, "event": 4, "context": "0x1", "filePath": "/f"})");
    Send(R"({"method": 4, "event": 5, "context": "0x1", "filePath": "/f"})");
    Send(R"({"method": 3, "event": 1, "context": "0x1", "filePath": "/f"})");
    Send(R"({"method": 4, "event": 1, "context": 1, "filePath": "/f"})");
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(0, NoClient());
}

TEST_F(DsmccEvents, WithoutAClientAreLoggedAsAnError) {
    TolmBacBrowserDSMCCFileCallback(TOLM_DSMCC_FILE_EVENT_1, "/f", nullptr);
    EXPECT_EQ(1, NoClient());
}

TEST_F(DsmccEvents, ANullCallbackIsRefusedAndTheEarlierOneStays) {
    Register(mClient);
    EXPECT_EQ(-1, static_cast<int32_t>(mService->RegisterCallback(nullptr)));
    EXPECT_EQ(1, Null());
    EXPECT_EQ(1u, mClient->Linked().size());
    EXPECT_EQ(1, Monitored("ClientDeathRecipient::StartMonitor"));
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(DsmccEvents, RegistrationWatchesTheClientUntilItIsTakenBack) {
    Register(mClient);
    EXPECT_EQ(1u, mClient->Linked().size());
    EXPECT_EQ(0u, mClient->Cookie());
    EXPECT_EQ(1, Monitored("ClientDeathRecipient::StartMonitor"));
    EXPECT_EQ(0, Monitored("ClientDeathRecipient::StopMonitor"));

    EXPECT_EQ(0, static_cast<int32_t>(mService->UnregisterCallback()));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(1, Monitored("ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(0, Null());
}

TEST_F(DsmccEvents, AreForwardedToNobodyAfterTheRegistrationsEnd) {
    Register(mClient);
    EXPECT_EQ(0, static_cast<int32_t>(mService->UnregisterCallback()));
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(1, NoClient());
    EXPECT_EQ(0, mLog.Count(ANDROID_LOG_WARN, "[ipc_dsmcc]", "m_browserCb is null"));
    Register(mClient);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(DsmccEvents, TakingBackWhatWasNotRegisteredSaysSo) {
    EXPECT_EQ(0, static_cast<int32_t>(mService->UnregisterCallback()));
    EXPECT_EQ(1, Monitored("ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(1, Null());
}

TEST_F(DsmccEvents, ASecondRegistrationReplacesTheFirst) {
    const sp<RecordingDsmccCallback> second = new RecordingDsmccCallback;
    Register(mClient);
    Register(second);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(1u, second->Linked().size());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(second->Calls(), ElementsAre(kCall));
}

TEST_F(DsmccEvents, AReplacedClientIsNotKept) {
    sp<RecordingDsmccCallback> first = new RecordingDsmccCallback;
    const android::wp<RecordingDsmccCallback> watched = first;
    Register(first);
    first.clear();
    EXPECT_NE(nullptr, watched.promote().get());
    Register(mClient);
    EXPECT_EQ(nullptr, watched.promote().get());
}

TEST_F(DsmccEvents, RegisteringTheSameClientAgainLeavesOneDeathNotice) {
    Register(mClient);
    Register(mClient);
    EXPECT_EQ(1u, mClient->Linked().size());
    mClient->Die();
    EXPECT_EQ(1, Monitored("ClientDeathRecipient::serviceDied - client died"));
}

TEST_F(DsmccEvents, TheDeathOfTheClientEndsTheForwardingButNotTheAdaptorsCallback) {
    Register(mClient);
    mClient->Die();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "ENTER"));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "LEAVE"));
    EXPECT_EQ(1, Monitored("ClientDeathRecipient::serviceDied - client died"));
    EXPECT_EQ(1, Monitored("ClientDeathRecipient::StopMonitor"));
    EXPECT_EQ(0, Null());
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(1, NoClient());
    EXPECT_EQ(0, mLog.Count(ANDROID_LOG_WARN, "[ipc_dsmcc]", "m_browserCb is null"));

    const sp<RecordingDsmccCallback> next = new RecordingDsmccCallback;
    Register(next);
    EXPECT_EQ(1u, next->Linked().size());
    Send(kEvent);
    EXPECT_THAT(next->Calls(), ElementsAre(kCall));
    EXPECT_EQ(1, NoClient());
}

TEST_F(DsmccEvents, TheDeathOfTheClientTellsThePlatformNothing) {
    FakePlatform platform("service_dsmcc_to_hbbtv", R"({"ret": 0})");
    Register(mClient);
    mClient->Die();
    // A request that is answered comes after anything that was sent before.
    EXPECT_EQ(0, static_cast<int32_t>(mService->OnReleaseFile("u", 1)));
    EXPECT_EQ(1u, platform.Frames().size());
}

TEST_F(DsmccEvents, TheLateDeathNoticeOfAReplacedClientLeavesItsSuccessorAlone) {
    const sp<RecordingDsmccCallback> second = new RecordingDsmccCallback;
    Register(mClient);
    const auto recipient = mClient->Linked().at(0);
    Register(second);
    recipient->serviceDied(0, android::wp<android::hidl::base::V1_0::IBase>(mClient.get()));
    EXPECT_EQ(0, Monitored("ClientDeathRecipient::serviceDied - client died"));
    EXPECT_EQ(1u, second->Linked().size());
    Send(kEvent);
    EXPECT_THAT(second->Calls(), ElementsAre(kCall));
}

TEST_F(DsmccEvents, ADeathThatIsToldWhileTheClientIsReplacedLeavesItsSuccessorAlone) {
    const sp<RecordingDsmccCallback> second = new RecordingDsmccCallback;
    Register(mClient);
    Register(second);
    mService->OnHidlClientDied(0, android::wp<android::hidl::base::V1_0::IBase>(mClient.get()));
    EXPECT_EQ(1u, second->Linked().size());
    EXPECT_EQ(0, Monitored("ClientDeathRecipient::StopMonitor"));
    Send(kEvent);
    EXPECT_THAT(second->Calls(), ElementsAre(kCall));
}

TEST_F(DsmccEvents, AreNotForwardedOnceMonitoringHasStopped) {
    Register(mClient);
    mService->StopMonitor(mClient);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(1, NoClient());
    mService->StartMonitor(mClient);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(DsmccEvents, AreNotForwardedOnceTheServiceHasGone) {
    Register(mClient);
    mService.clear();
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(1, NoClient());
}

TEST_F(DsmccEvents, AreForwardedWhateverBecomesOfAnotherService) {
    Register(mClient);
    sp<Dsmcc> passing = new Dsmcc;
    passing.clear();
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(DsmccEvents, WithoutAnAdaptorTheClientIsHeldAllTheSame) {
    Register(mClient);
    TolmDsmccAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    const sp<RecordingDsmccCallback> second = new RecordingDsmccCallback;
    EXPECT_EQ(-1, static_cast<int32_t>(mService->RegisterCallback(second)));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(1u, second->Linked().size());
    TolmBacBrowserDSMCCFileCallback(TOLM_DSMCC_FILE_EVENT_4, "/f", reinterpret_cast<const void*>(7));
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(second->Calls(), ElementsAre("OnDsmccFileEvent 4 '' /f 7"));
}

TEST_F(DsmccEvents, WithoutAnAdaptorTheClientIsForgottenAllTheSame) {
    Register(mClient);
    TolmDsmccAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(0, static_cast<int32_t>(mService->UnregisterCallback()));
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    TolmBacBrowserDSMCCFileCallback(TOLM_DSMCC_FILE_EVENT_4, "/f", nullptr);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(1, NoClient());
}

TEST_F(DsmccEvents, RegistrationsAndDeathsBesideEventsDoNotDisturbEachOther) {
    constexpr int kTurns = 100;
    Register(mClient);
    std::thread registrations([this] {
        for (int i = 0; i < kTurns; ++i) {
            const sp<RecordingDsmccCallback> client = new RecordingDsmccCallback;
            Register(client);
            client->Die();
        }
    });
    for (int i = 0; i < kTurns; ++i) Send(kEvent);
    registrations.join();
    Register(mClient);
    Send(R"({"method": 4, "event": 3, "context": "0x5", "filePath": "/last"})");
    EXPECT_EQ("OnDsmccFileEvent 1 '' /last 5", mClient->Calls().back());
}

}  // namespace hbbtv::test
