// Programmes, components, AV control and searches across processes: the service publishes their interfaces, and events
// reach a client's process until that ends.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IAVComponent.h>
#include <vantorel/hardware/hbbtv/1.0/IAVControl.h>
#include <vantorel/hardware/hbbtv/1.0/IProgramme.h>
#include <vantorel/hardware/hbbtv/1.0/ISearchManager.h>

#include <string>

#include "event_connection.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using namespace vantorel::hardware::hbbtv::V1_0;
using android::sp;
using android::hardware::hidl_string;

TEST(Programmes, AreAskedAcrossProcesses) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_program",
                          R"({"ret": 0, "out_name": "K\u00f6ln", "length": 4, "k0": 77, "k1": 0, "k2": 255, "k3": 0})");
    ServiceProcess service;
    const sp<IProgramme> programme = Find<IProgramme>();
    ASSERT_NE(nullptr, programme);
    std::string answer;
    const auto keep = [&](int32_t, const hidl_string& text) { answer.assign(text.c_str(), text.size()); };
    ASSERT_TRUE(programme->GetName(1, keep).isOk());
    EXPECT_EQ("K\xc3\xb6ln", answer);
    ASSERT_TRUE(programme->GetSIDescriptorByIndex(1, 0, keep).isOk());
    EXPECT_EQ(std::string("M\0\xff\0", 4), answer);
    EXPECT_EQ(0, static_cast<int32_t>(programme->Release(1)));
    ASSERT_TRUE(platform.WaitForFrames(3));
    EXPECT_EQ(kOneWay, platform.Frames()[2].type);
}

TEST(AVComponents, AreAskedAcrossProcesses) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_av_com", R"({"ret": 0, "aspect_ratio": 1.78, "type": 2})");
    ServiceProcess service;
    const sp<IAVComponent> component = Find<IAVComponent>();
    ASSERT_NE(nullptr, component);
    double aspectRatio = 0;
    const auto keepRatio = [&](int32_t, double ratio) { aspectRatio = ratio; };
    ASSERT_TRUE(component->GetAspectRatio(1, keepRatio).isOk());
    EXPECT_EQ(1.78, aspectRatio);
    auto type = TolmHbbtvAVComponentType::VIDEO;
    const auto keepType = [&](int32_t, TolmHbbtvAVComponentType given) { type = given; };
    ASSERT_TRUE(component->GetType(1, keepType).isOk());
    EXPECT_EQ(TolmHbbtvAVComponentType::SUBTITLE, type);
}

TEST(AVControl, TellsTheComponentsAndIsToldWhichToPresentUntilTheClientsProcessEnds) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_av_ctrl", R"({"ret": 0})");
    ServiceProcess service;
    const sp<IAVControl> control = Find<IAVControl>();
    ASSERT_NE(nullptr, control);
    const TolmAvComponentData component{true, 3, TolmHbbtvAVComponentType::AUDIO, "HEAAC", "deu", 2, false, false};
    const auto status = control->ComponentUpdate({}, TolmHbbtvAVComponentType::AUDIO, {component}, 0);
    EXPECT_EQ(0, static_cast<int32_t>(status));
    ASSERT_TRUE(platform.WaitForFrames(1));
    EXPECT_NE(std::string::npos, platform.Frames()[0].payload.find("\"language\" : \"deu\""));

    RegisteredClient client("av_control");
    ASSERT_TRUE(client.Registered()) << client.Output();
    EventConnection events(directory / "service_hbbtv_to_plugin_av_ctrl", 19);
    ASSERT_TRUE(events.Send({R"({"method": 1, "component_type": 1, "component_index": 5})"}));
    EXPECT_TRUE(client.WaitForOutput("component 1 1 5\n")) << client.Output();
    client.Kill();
    // The service lives on.
    ASSERT_TRUE(events.Send({R"({"method": 1, "component_type": 1, "component_index": 6})"}));
    RegisteredClient next("av_control");
    ASSERT_TRUE(next.Registered()) << next.Output();
    ASSERT_TRUE(events.Send({R"({"method": 1, "component_type": 1, "component_index": 7})"}));
    EXPECT_TRUE(next.WaitForOutput("component 1 1 7\n")) << next.Output();
}

TEST(Searches, AreMadeAcrossProcessesAndTellTheirClientUntilItsProcessEnds) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_sm", R"({"ret": 0, "out_handle": "0xf0000001"})");
    ServiceProcess service;
    const sp<ISearchManager> searches = Find<ISearchManager>();
    ASSERT_NE(nullptr, searches);
    int64_t query = 0;
    ASSERT_TRUE(searches
                    ->MetaSearch_CreateQuery(1, "Programme.name", TolmQueryComparisonType::CONTAINS, "news",
                                             [&](int32_t, int64_t made) { query = made; })
                    .isOk());
    EXPECT_EQ(0xf0000001, query);

    RegisteredClient client("search_manager");
    ASSERT_TRUE(client.Registered()) << client.Output();
    EventConnection events(directory / "service_hbbtv_to_plugin_sm", 8);
    ASSERT_TRUE(events.Send({R"({"event": 0, "state": 3, "searchHandle": "0x9d20"})"}));
    EXPECT_TRUE(client.WaitForOutput("search 0 3 40224 2748\n")) << client.Output();
    client.Kill();
    // The platform is not told, and the service lives on.
    ASSERT_TRUE(events.Send({R"({"event": 0, "state": 0})"}));
    EXPECT_EQ(2u, platform.Frames().size());
    RegisteredClient next("search_manager");
    ASSERT_TRUE(next.Registered()) << next.Output();
    ASSERT_TRUE(events.Send({R"({"event": 0, "state": 4})"}));
    EXPECT_TRUE(next.WaitForOutput("search 0 4 0 2748\n")) << next.Output();
}

}  // namespace

}  // namespace hbbtv::test
