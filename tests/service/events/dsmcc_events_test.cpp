// From the platform's file event to the client: forwarding, registration and the client's death.

#include <IDsmccCallbackListener.h>

#include "Dsmcc.h"
#include "ipc/src/dsmcc/tolm_dsmcc_adaptor_ipc.h"
#include "one_client.h"
#include "recording_client.h"

namespace hbbtv::test {

namespace {

using RecordingCallback = RecordingClient<vantorel::hardware::hbbtv::V1_0::IDsmccCallback>;

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::Dsmcc;
using vantorel::hardware::hbbtv::implementation::TolmBacBrowserDSMCCFileCallback;

class DsmccEvents : public OneClientEvents<Dsmcc, RecordingCallback> {
  protected:
    static constexpr char kEvent[] =
        R"({"method": 4, "event": 1, "context": "0x80000abc", "url": "dvb://1", "filePath": "/f"})";
    static constexpr char kCall[] = "OnDsmccFileEvent 2  /f 2147486396";

    DsmccEvents() : OneClientEvents("[hidl_video_broadcast_wrapper_client]") {}

    int TryRegister(const sp<Client>& client) override { return mService->RegisterCallback(client); }
    int TryUnregister() override { return mService->UnregisterCallback(); }

    int NoClient() const {
        return mLog.Count(ANDROID_LOG_ERROR, "[hidl_dsmcc_wrapper_client]", "IDsmccCallback callback is null");
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(DsmccClient, OneClient, DsmccEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(DsmccClient, OneClientOfAService, DsmccEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(DsmccClient, OneClientThatCanUnregister, DsmccEvents);

}  // namespace

TEST_F(DsmccEvents, ReachTheRegisteredClientWithoutTheirUrl) {
    Register(mClient);
    Send(kEvent);
    Send(R"({"method": 4, "event": 0, "context": "0x1", "filePath": "/g"})");
    Send(R"({"method": 4, "event": 2, "context": "", "filePath": "/h"})");
    Send(R"({"method": 4, "event": 3, "context": "0xffffffff", "filePath": ""})");
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall, "OnDsmccFileEvent 0  /g 1", "OnDsmccFileEvent 4  /h 0",
                                              "OnDsmccFileEvent 1   4294967295"));
    EXPECT_EQ(NoClient(), 0);
}

TEST_F(DsmccEvents, GiveTheContextWithAZeroHighHalf) {
    Register(mClient);
    Send(R"({"method": 4, "event": 1, "context": "0x1234567880000abc", "filePath": "/f"})");
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall));
}

TEST_F(DsmccEvents, DoNotReachTheClientIfTheAdaptorDropsThem) {
    Register(mClient);
    Send(R"({"method": 4, "event": 4, "context": "0x1", "filePath": "/f"})");
    Send(R"({"method": 4, "event": 5, "context": "0x1", "filePath": "/f"})");
    Send(R"({"method": 3, "event": 1, "context": "0x1", "filePath": "/f"})");
    Send(R"({"method": 4, "event": 1, "context": 1, "filePath": "/f"})");
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(NoClient(), 0);
}

TEST_F(DsmccEvents, AreLoggedAsAnErrorWithoutAClient) {
    TolmBacBrowserDSMCCFileCallback(TOLM_DSMCC_FILE_EVENT_1, "/f", nullptr);
    EXPECT_EQ(NoClient(), 1);
    Register(mClient);
    Unregister();
    Send(kEvent);
    EXPECT_EQ(NoClient(), 2);
    Register(mClient);
    mClient->Die();
    Send(kEvent);
    EXPECT_EQ(NoClient(), 3);
    Register(mClient);
    mService->StopMonitor(mClient);
    Send(kEvent);
    EXPECT_EQ(NoClient(), 4);
    Register(mClient);
    mService.clear();
    Send(kEvent);
    EXPECT_EQ(NoClient(), 5);
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_dsmcc]", "m_browserCb is null"), 0);
}

TEST_F(DsmccEvents, AreNotUnregisteredAtThePlatformByADeath) {
    Register(mClient);
    mClient->Die();
    // A request that is answered comes after anything that was sent before.
    EXPECT_EQ(static_cast<int32_t>(mService->OnReleaseFile("u", 1)), 0);
    EXPECT_EQ(mPlatform.Frames().size(), 1u);
}

TEST_F(DsmccEvents, WithoutAnAdaptorTheClientIsRegisteredAnyway) {
    Register(mClient);
    TolmDsmccAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    const sp<Client> second = new Client;
    EXPECT_EQ(static_cast<int32_t>(mService->RegisterCallback(second)), -1);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    EXPECT_EQ(second->Linked().size(), 1u);
    TolmBacBrowserDSMCCFileCallback(TOLM_DSMCC_FILE_EVENT_4, "/f", reinterpret_cast<const void*>(7));
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(second->Calls(), ElementsAre("OnDsmccFileEvent 4  /f 7"));
}

TEST_F(DsmccEvents, WithoutAnAdaptorTheClientIsReleasedAnyway) {
    Register(mClient);
    TolmDsmccAdaptorIpc::DeleteInstance();
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(static_cast<int32_t>(mService->UnregisterCallback()), 0);
    EXPECT_THAT(mClient->Linked(), IsEmpty());
    TolmBacBrowserDSMCCFileCallback(TOLM_DSMCC_FILE_EVENT_4, "/f", nullptr);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_EQ(NoClient(), 1);
}

}  // namespace hbbtv::test
