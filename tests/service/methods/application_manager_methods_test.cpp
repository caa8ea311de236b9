// Methods of the application manager that ask nothing of the platform, lists of any length, and a URL that is cut.
#include <IAIPEventCallbackListener.h>
#include <gtest/gtest.h>

#include "ApplicationManager.h"
#include "method_rows.h"
#include "recording_client.h"

namespace hbbtv::test {

namespace {

using android::sp;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IApplicationManager;
using vantorel::hardware::hbbtv::V1_0::TolmAIPEvent;
using Client = RecordingClient<vantorel::hardware::hbbtv::V1_0::IAIPEventCallback>;

}  // namespace

TEST(ApplicationManager, RegistersAndUnregistersWithoutAskingThePlatform) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 5})");
    const sp service(HIDL_FETCH_IApplicationManager("default"));
    EXPECT_EQ(static_cast<int32_t>(service->RegisterCallback(TolmAIPEvent::KEY_PRESS, new Client, 0x5ffffffff)), 0);
    EXPECT_EQ(static_cast<int32_t>(service->UnregisterCallback(TolmAIPEvent::KEY_PRESS, 0x5ffffffff)), 0);
    EXPECT_TRUE(platform.Frames().empty());
    EXPECT_EQ(platform.Connections(), 0);
}

TEST(ApplicationManager, CannotRegisterOrUnregisterWithoutAnAdaptor) {
    ScratchDirectory directory;
    const NoMemoryForAdaptors noMemory;
    const sp service(HIDL_FETCH_IApplicationManager("default"));
    const sp<Client> client = new Client;
    EXPECT_EQ(static_cast<int32_t>(service->RegisterCallback(TolmAIPEvent::KEY_PRESS, client, 1)), -1);
    EXPECT_TRUE(client->Linked().empty());
    EXPECT_EQ(static_cast<int32_t>(service->UnregisterCallback(TolmAIPEvent::KEY_PRESS, 1)), -1);
}

TEST(ApplicationManager, DoesNotAskForTheChildrenOfNoApplication) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 0})");
    EXPECT_EQ(Answer("GetChildApps", Parsed("[-1, -1]")), "[-1,[],[]]");
    EXPECT_TRUE(platform.Frames().empty());
}

TEST(ApplicationManager, GivesListsOfAnySensibleLength) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 0, "num": 65536, "appNum": 65536})");
    EXPECT_EQ(Parsed(Answer("GetOtherKeys", Parsed("[1, 2]")))[1].size(), 65536u);
    const Json::Value children = Parsed(Answer("GetChildApps", Parsed("[1, 2]")));
    EXPECT_EQ(children[1].size(), 65536u);
    EXPECT_EQ(children[2].size(), 65536u);
}

// A URL with a zero byte ends there.
TEST(ApplicationManager, CutsAUrlAtItsFirstZeroByte) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 0})");
    Answer("CreateApplication", Parsed(R"([1, 2, "a\u0000b", false, true])"));
    EXPECT_EQ(Parsed(platform.Frames().at(0).payload)["url"].asString(), "a");
}

}  // namespace hbbtv::test
