// The interfaces that tell of the terminal, across processes: the service publishes them all, and a file event reaches
// a client's process until that ends. Then the same with the simulated platform on the other side.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IApplicationPrivatedata.h>
#include <vantorel/hardware/hbbtv/1.0/ICapabilities.h>
#include <vantorel/hardware/hbbtv/1.0/IDsmcc.h>
#include <vantorel/hardware/hbbtv/1.0/ILocalSystem.h>
#include <vantorel/hardware/hbbtv/1.0/IParentalControlManager.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using namespace vantorel::hardware::hbbtv::V1_0;
using android::sp;
using android::hardware::hidl_string;

TEST(Terminal, IsAskedAcrossProcesses) {
    ScratchDirectory directory;
    FakePlatform capabilitiesPlatform("service_plugin_to_hbbtv_cap", R"({"ret": 0, "terminalCap": "+DVB_S"})");
    FakePlatform systemPlatform("service_plugin_to_hbbtv_local_system", R"({"ret": 0, "vendorName": "K\u00f6ln"})");
    FakePlatform privatePlatform("service_plugin_to_hbbtv_app_priv", R"({"ret": 0, "channel": "0xf0000001"})");
    FakePlatform ratingPlatform("service_plugin_to_hbbtv_pcm",
                                R"({"ret": 0, "parentRating": 12, "countryCode": "DEU"})");
    ServiceProcess service;

    const sp<ICapabilities> capabilities = Find<ICapabilities>();
    const sp<ILocalSystem> system = Find<ILocalSystem>();
    const sp<IApplicationPrivatedata> privateData = Find<IApplicationPrivatedata>();
    const sp<IParentalControlManager> ratings = Find<IParentalControlManager>();
    ASSERT_NE(nullptr, capabilities);
    ASSERT_NE(nullptr, system);
    ASSERT_NE(nullptr, privateData);
    ASSERT_NE(nullptr, ratings);

    std::string answer;
    ASSERT_TRUE(capabilities->GetTerminalCapability([&](int32_t, const hidl_string& cap) { answer = cap; }).isOk());
    EXPECT_EQ("+DVB_S", answer);
    ASSERT_TRUE(system->GetVendorName([&](int32_t, const hidl_string& name) { answer = name; }).isOk());
    EXPECT_EQ("K\xc3\xb6ln", answer);
    int64_t number = 0;
    ASSERT_TRUE(privateData->GetCurrentChannel([&](int32_t, int64_t channel) { number = channel; }).isOk());
    EXPECT_EQ(0xf0000001, number);
    ASSERT_TRUE(ratings
                    ->GetLocalParentalRating([&](int32_t, const hidl_string& countryCode, int32_t rating) {
                        answer = countryCode;
                        number = rating;
                    })
                    .isOk());
    EXPECT_EQ("DEU", answer);
    EXPECT_EQ(12, number);
}

TEST(Terminal, TellsARegisteredClientOfFilesUntilItsProcessEnds) {
    ScratchDirectory directory;
    FakePlatform platform("service_dsmcc_to_hbbtv", R"({"ret": 0})");
    ServiceProcess service;
    const sp<IDsmcc> dsmcc = Find<IDsmcc>();
    ASSERT_NE(nullptr, dsmcc);
    RegisteredClient client("dsmcc");
    ASSERT_TRUE(client.Registered()) << client.Output();

    ASSERT_EQ(0, static_cast<int32_t>(dsmcc->OnRequestFile("dvb://1", 0xabc)));
    ASSERT_TRUE(platform.WaitForFrames(1));
    EXPECT_EQ(kOneWay, platform.Frames()[0].type);

    RawConnection events = RawConnection::To(directory / "service_hbbtv_to_dsmcc");
    const std::string event = R"({"method": 4, "event": 3, "context": "0xabc", "url": "dvb://1", "filePath": "/f"})";
    ASSERT_TRUE(events.Write(FrameBytes(kOneWay, 2, event)));
    EXPECT_TRUE(client.WaitForOutput("file 1 '' /f 2748\n")) << client.Output();

    client.Kill();
    // The service lives on, and drops the event.
    ASSERT_TRUE(events.Write(FrameBytes(kOneWay, 2, event)));
    ASSERT_TRUE(events.Write(FrameBytes(kRequest, 2, "{}")));
    EXPECT_TRUE(events.ReadFrame().has_value());
    EXPECT_EQ(0, static_cast<int32_t>(dsmcc->OnReleaseFile("dvb://1", 0xabc)));
}

// A client of the service, in front of the simulated platform with its own line-up, a carousel, and a memory.
class SimulatedTerminal : public testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directory(mDirectory / "carousel");
        std::ofstream(mDirectory / "carousel/index.html") << "hello";
        StartPlatform();
        mCapabilities = Find<ICapabilities>();
        mSystem = Find<ILocalSystem>();
        mRatings = Find<IParentalControlManager>();
        ASSERT_TRUE(mCapabilities != nullptr && mSystem != nullptr && mRatings != nullptr);
    }

    void StartPlatform() {
        mPlatform = std::make_unique<SimulatedPlatform>(
            std::vector<std::string>{"--state", mDirectory / "state", "--carousel", mDirectory / "carousel"});
        ASSERT_TRUE(mPlatform->Ready()) << mPlatform->Output();
    }

    std::string Tell(const std::string& command) {
        ChildProcess program({HBBTV_SIM_PROGRAM, "--tell", command});
        EXPECT_TRUE(program.WaitForExit().has_value());
        return program.Output();
    }

    // The one result of a method that ends well.
    template <typename Value, typename Interface, typename Method, typename... Arguments>
    static Value Get(const sp<Interface>& service, Method method, const Arguments&... arguments) {
        Value value{};
        const auto keep = [&](int32_t status, const auto& result) {
            EXPECT_EQ(0, status);
            value = result;
        };
        EXPECT_TRUE(((*service).*method)(arguments..., keep).isOk());
        return value;
    }

    static int32_t StatusOf(const android::hardware::Return<int32_t>& status) {
        return status.isOk() ? static_cast<int32_t>(status) : -1000;
    }

    ScratchDirectory mDirectory;
    std::unique_ptr<SimulatedPlatform> mPlatform;
    ServiceProcess mService;
    sp<ICapabilities> mCapabilities;
    sp<ILocalSystem> mSystem;
    sp<IParentalControlManager> mRatings;
};

TEST_F(SimulatedTerminal, TellsWhatItIsAndCan) {
    const std::string profile = "OITF_HD_UIPROF+META_SI+META_EIT+TRICKMODE+RTSP+AVCAD+DRM+PVR+DVB_S+DVB_T";
    EXPECT_EQ(profile, Get<std::string>(mCapabilities, &ICapabilities::GetTerminalCapability));
    const auto xml = Get<std::string>(mCapabilities, &ICapabilities::GetXmlCapabilities);
    EXPECT_NE(std::string::npos, xml.find("<ui_profile name=\"" + profile + "\">")) << xml;
    EXPECT_TRUE(Get<bool>(mCapabilities, &ICapabilities::HasCapability, 10)) << "DVB_T";
    EXPECT_FALSE(Get<bool>(mCapabilities, &ICapabilities::HasCapability, 8)) << "DVB_C";
    EXPECT_EQ(2u, Get<uint32_t>(mCapabilities, &ICapabilities::GetExtraSDVideoDecodes));
    EXPECT_EQ(1u, Get<uint32_t>(mCapabilities, &ICapabilities::GetExtraHDVideoDecodes));
    EXPECT_EQ("Simulated 40", Get<std::string>(mSystem, &ILocalSystem::GetModelName));
    EXPECT_TRUE(Get<bool>(mSystem, &ILocalSystem::GetPvrEnabled));
    EXPECT_EQ("ok\n", Tell("pvr off"));
    EXPECT_EQ("ok\n", Tell("ci-plus on"));
    EXPECT_FALSE(Get<bool>(mSystem, &ILocalSystem::GetPvrEnabled));
    EXPECT_EQ(1, Get<int32_t>(mSystem, &ILocalSystem::GetCiplusEnabled));
}

TEST_F(SimulatedTerminal, KeepsAddedSchemesAndItsIdAcrossARestart) {
    const auto id = Get<std::string>(mSystem, &ILocalSystem::GetDeviceID);
    EXPECT_EQ(32u, id.size());
    const auto manager = Get<int64_t>(mRatings, &IParentalControlManager::Create);
    const auto own = Get<int64_t>(mRatings, &IParentalControlManager::GetParentalRatingSchemeByIndex, manager, 1u);
    EXPECT_EQ("urn:oipf:GermanyFSKCS",
              Get<std::string>(mRatings, &IParentalControlManager::GetParentalRatingSchemeName, own));
    const auto threshold = Get<int64_t>(mRatings, &IParentalControlManager::GetThreshold, own);
    EXPECT_EQ("18", Get<std::string>(mRatings, &IParentalControlManager::GetParentalRatingName, threshold));
    EXPECT_EQ(4, Get<int32_t>(mRatings, &IParentalControlManager::GetValue, threshold));
    EXPECT_EQ("DE", Get<std::string>(mRatings, &IParentalControlManager::GetRegion, threshold));
    const auto added = Get<int64_t>(mRatings, &IParentalControlManager::AddScheme, manager, "urn:mine", "a,b");
    EXPECT_EQ("urn:mine", Get<std::string>(mRatings, &IParentalControlManager::GetParentalRatingSchemeName, added));
    EXPECT_EQ(0, StatusOf(mRatings->Destroy(manager)));
    EXPECT_EQ(-1, StatusOf(mRatings->Destroy(manager)));

    mPlatform->Kill();
    StartPlatform();
    // A family's first request meets the connection to the one that was killed.
    EXPECT_EQ(-1, StatusOf(mRatings->Destroy(manager)));
    int32_t status = 0;
    EXPECT_TRUE(mSystem->GetDeviceID([&](int32_t result, const hidl_string&) { status = result; }).isOk());
    EXPECT_EQ(-1, status);

    const auto again = Get<int64_t>(mRatings, &IParentalControlManager::Create);
    EXPECT_EQ(4u, Get<uint32_t>(mRatings, &IParentalControlManager::GetParentalRatingSchemeNum, again));
    const auto kept = Get<int64_t>(mRatings, &IParentalControlManager::GetParentalRatingSchemeByIndex, again, 3u);
    EXPECT_EQ("urn:mine", Get<std::string>(mRatings, &IParentalControlManager::GetParentalRatingSchemeName, kept));
    EXPECT_EQ(id, Get<std::string>(mSystem, &ILocalSystem::GetDeviceID));
}

TEST_F(SimulatedTerminal, BringsFilesOfTheCarouselToAClientsProcess) {
    const sp<IDsmcc> dsmcc = Find<IDsmcc>();
    ASSERT_NE(nullptr, dsmcc);
    RegisteredClient client("dsmcc");
    ASSERT_TRUE(client.Registered()) << client.Output();
    const std::string url = "dvb://1.3fb.283d.17/index.html";  // of Das Erste HD, which is on
    const std::string received = mDirectory / "hbbtv_sim_carousel";
    ASSERT_EQ(0, StatusOf(dsmcc->OnRequestFile(url, 0xabc)));
    ASSERT_TRUE(client.WaitForOutput("file 0 '' " + received + "/1/index.html 2748\n")) << client.Output();
    std::string text;
    std::getline(std::ifstream(received + "/1/index.html"), text);
    EXPECT_EQ("hello", text);
    EXPECT_EQ("ok version 1\n", Tell("carousel-change index.html"));
    EXPECT_TRUE(client.WaitForOutput("file 2 '' " + received + "/2/index.html 2748\n")) << client.Output();
    ASSERT_EQ(0, StatusOf(dsmcc->OnRequestFile("dvb://1.3fb.283d.17/../secret", 0xdef)));
    EXPECT_TRUE(client.WaitForOutput("file 4 ''  3567\n")) << client.Output();
    EXPECT_EQ("ok ZDF HD\n", Tell("zap 2"));
    EXPECT_TRUE(client.WaitForOutput("file 1 ''  2748\n")) << client.Output();
    EXPECT_EQ(0, StatusOf(dsmcc->OnReleaseFile(url, 0xabc)));
    EXPECT_EQ(-1, StatusOf(dsmcc->OnReleaseFile(url, 0xabc)));
}

TEST_F(SimulatedTerminal, TellsApplicationsTheMemoryAndTheChannel) {
    const sp<IApplicationPrivatedata> data = Find<IApplicationPrivatedata>();
    ASSERT_NE(nullptr, data);
    EXPECT_EQ("ok\n", Tell("free-memory 4096"));
    EXPECT_EQ(4096, Get<int32_t>(data, &IApplicationPrivatedata::GetFreeMem));
    EXPECT_NE(0, Get<int64_t>(data, &IApplicationPrivatedata::GetCurrentChannel));
}

}  // namespace

}  // namespace hbbtv::test
