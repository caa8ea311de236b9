// From the platform's event to the client of searches: forwarding, registration and the client's death.

#include <ISearchManagerCallbackListener.h>

#include "SearchManager.h"
#include "ipc/src/plugin/tolm_search_manager_adaptor_ipc.h"
#include "one_client.h"
#include "recording_client.h"

namespace hbbtv::test {

namespace {

using RecordingCallback = RecordingClient<vantorel::hardware::hbbtv::V1_0::ISearchManagerCallback>;

using android::sp;
using testing::ElementsAre;
using testing::IsEmpty;
using vantorel::hardware::hbbtv::implementation::SearchManager;
using vantorel::hardware::hbbtv::implementation::TolmSearchManagerCallback;

constexpr int64_t kContext = 0x7777777780000abc;  // the low half counts

class SearchManagerEvents : public OneClientEvents<SearchManager, RecordingCallback> {
  protected:
    static constexpr char kEvent[] = R"({"event": 0, "state": 3, "searchHandle": "0xf0009d20"})";
    static constexpr char kCall[] = "OnSearchManagerEvent 0 3 4026572064 2147486396";

    static constexpr char kCallWithoutContext[] = "OnSearchManagerEvent 0 3 4026572064 ";
    static constexpr char kReceived[] = "OnSearchManagerEvent 0 3 0 0";

    SearchManagerEvents() : OneClientEvents("[hidl_search_manager_wrapper_client]") {}

    int TryRegister(const sp<Client>& client) override { return TryRegister(client, kContext); }
    int TryRegister(const sp<Client>& client, int64_t context) {
        return mService->SearchManager_RegisterCallback(0x100001000, client, context);
    }

    static void Receive() { TolmSearchManagerCallback(0, {3, nullptr}, nullptr); }
};

INSTANTIATE_TYPED_TEST_SUITE_P(SearchManagerClient, OneClient, SearchManagerEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(SearchManagerClient, OneClientOfAService, SearchManagerEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(SearchManagerClient, OneClientOfAnAdaptor, SearchManagerEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(SearchManagerClient, OneClientOfThePlatform, SearchManagerEvents);
INSTANTIATE_TYPED_TEST_SUITE_P(SearchManagerClient, OneClientWithAContext, SearchManagerEvents);

}  // namespace

TEST_F(SearchManagerEvents, ReachTheRegisteredClientWithItsContext) {
    Register(mClient);
    ASSERT_EQ(mPlatform.Frames().size(), 1u);
    EXPECT_EQ(
        mPlatform.Frames()[0].payload,
        "{\n\t\"context\" : \"0x80000abc\",\n\t\"in_handle\" : \"0x1000\",\n\t\"method\" : 4,\n\t\"type\" : 0\n}\n");
    Send(kEvent);
    Send(R"({"event": 0, "state": 2})");
    Send(R"({"event": 0, "state": -1, "searchHandle": "0xffffffff"})");
    Send(R"({"event": 3, "state": 2, "searchHandle": "0x9d20"})");
    EXPECT_THAT(mClient->Calls(), ElementsAre(kCall, "OnSearchManagerEvent 0 2 0 2147486396",
                                              "OnSearchManagerEvent 0 -1 4294967295 2147486396",
                                              "OnSearchManagerEvent 3 0 0 2147486396"));
}

TEST_F(SearchManagerEvents, GiveHandlesAndContextsWithAZeroHighHalf) {
    ASSERT_EQ(TryRegister(mClient, -1), 0);
    Send(R"({"event": 0, "searchHandle": "0x12345678f0000001"})");
    EXPECT_THAT(mClient->Calls(), ElementsAre("OnSearchManagerEvent 0 0 4026531841 4294967295"));
}

TEST_F(SearchManagerEvents, AreDroppedSilentlyWithoutAClient) {
    TolmSearchManagerCallback(0, {3, nullptr}, nullptr);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(SearchManagerEvents, GoToTheLastClientWhateverItsSearchManager) {
    const sp<Client> second = new Client;
    Register(mClient);
    EXPECT_EQ(static_cast<int32_t>(mService->SearchManager_RegisterCallback(0x2000, second, 5)), 0);
    Send(kEvent);
    EXPECT_THAT(mClient->Calls(), IsEmpty());
    EXPECT_THAT(second->Calls(), ElementsAre("OnSearchManagerEvent 0 3 4026572064 5"));
}

TEST_F(SearchManagerEvents, AreNotUnregisteredAtThePlatformByADeath) {
    Register(mClient);
    mPlatform.ForgetFrames();
    mClient->Die();
    EXPECT_THAT(Requests(), IsEmpty());
}

TEST(SearchManagerWithoutPlatform, RegistersItsClientAnyway) {
    const ScratchDirectory directory;
    const sp<SearchManager> service = new SearchManager;
    const sp<RecordingCallback> client = new RecordingCallback;
    EXPECT_EQ(static_cast<int32_t>(service->SearchManager_RegisterCallback(1, client, 5)), -1);
    EXPECT_EQ(client->Linked().size(), 1u);
    TolmSearchManagerCallback(0, {3, nullptr}, nullptr);
    EXPECT_THAT(client->Calls(), ElementsAre("OnSearchManagerEvent 0 3 0 0"));
}

}  // namespace hbbtv::test
