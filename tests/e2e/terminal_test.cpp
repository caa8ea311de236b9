// The interfaces that tell of the terminal, across processes: the service publishes them all, and a file event reaches
// a client's process until that ends.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IApplicationPrivatedata.h>
#include <vantorel/hardware/hbbtv/1.0/ICapabilities.h>
#include <vantorel/hardware/hbbtv/1.0/IDsmcc.h>
#include <vantorel/hardware/hbbtv/1.0/ILocalSystem.h>
#include <vantorel/hardware/hbbtv/1.0/IParentalControlManager.h>

#include <string>

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

}  // namespace

}  // namespace hbbtv::test
