// The demo against the simulated platform: what a new user sees first.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IChannel.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelConfig.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelList.h>

#include <string>
#include <vector>

#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

// The texts stand there in this order, whatever stands between.
void ExpectInOrder(const std::string& output, const std::vector<std::string>& texts) {
    size_t at = 0;
    for (const std::string& text : texts) {
        const size_t found = output.find(text, at);
        ASSERT_NE(std::string::npos, found) << text << " is not where it should be in:\n" << output;
        at = found + text.size();
    }
}

TEST(Demo, TellsOfTheChannelChangesAndOfAnApplicationAndEndsWell) {
    ScratchDirectory directory;
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready()) << platform.Output();
    ServiceProcess service;
    ChildProcess demo({HBBTV_DEMO_PROGRAM});
    EXPECT_EQ(0, demo.WaitForExit());

    ExpectInOrder(demo.Output(), {"Walk through the channel list",
                                  "-> 35 channels",
                                  "no  name                        type   onid  tsid   sid",
                                  "   1  Das Erste HD                TV        1  1019 10301",
                                  "ZDF HD                      TV        1  1011 11110",
                                  "Dlf                         RADIO     1  1011 11191",
                                  "calls in",
                                  "Find programmes by a word of their title: news",
                                  "contains, \"news\"",
                                  "OnSearchManagerEvent",
                                  "finished",
                                  "-> 5 of them",
                                  "News",
                                  "Create(context 0xbeef)",
                                  "RegisterCallback",
                                  "BindToCurrentChannel",
                                  "presenting",
                                  "Tune to Das Erste HD",
                                  "onChannelChangeSucceeded",
                                  "Das Erste HD (0x",
                                  "presenting",
                                  "Tune to ZDF HD",
                                  "onChannelChangeSucceeded",
                                  "ZDF HD (0x",
                                  "presenting",
                                  "NextChannel",
                                  "onChannelChangeSucceeded",
                                  "PrevChannel",
                                  "onChannelChangeSucceeded",
                                  "GetCurrentChannel",
                                  "ZDF HD (0x",
                                  "GetPlayState",
                                  "presenting",
                                  "GetVolume",
                                  "-> 35",
                                  "(video)",
                                  "(audio)",
                                  "Ask what is on now and next",
                                  "GetProgrammeNum",
                                  "-> 2",
                                  "GetStartTime",
                                  "minutes",
                                  "GetStartTime",
                                  "minutes",
                                  "Rai 1 HD",
                                  "onChannelChangeError",
                                  "encrypted",
                                  "Be the browser",
                                  "IMtm::RegisterCallback",
                                  "IApplicationManager::RegisterCallback(1)",
                                  "Tune to arte HD",
                                  "Its application has a tab",
                                  "OnTabCreated(1)",
                                  "OnTabLoadFinished(1)",
                                  "onApplicationEvent",
                                  "application 1 of organisation 20",
                                  "GetCurrentApp",
                                  "application 1 of organisation 20",
                                  "GetValue",
                                  "key sets 0x33",
                                  "KeyConsumedByBrowser(1, red)",
                                  "yes",
                                  "Tune to tagesschau24 HD",
                                  "Its application goes with it",
                                  "OnTabDestroyed(1)",
                                  "IApplicationManager::UnregisterCallback(1)",
                                  "IMtm::UnregisterCallback",
                                  "Leave",
                                  "UnregisterCallback",
                                  "Destroy",
                                  "All went as it should."});
    // What the platform does by itself comes between the calls, at its own time.
    ExpectInOrder(
        demo.Output(),
        {"<- CreateApp", "http://arte.example/hbbtv/: tab 1", "<- SetAppConfig", "tab 1: broadcast-related",
         "<- SetDvbOrigin", "tab 1: dvb://1.3fb.283e", "<- LoadURLInTab", "tab 1: http://arte.example/hbbtv/",
         "<- ShowHideTab", "tab 1: show", "<- GetRenderProcessId", "tab 1: process 4711", "<- DestroyApp", "tab 1"});
}

TEST(Demo, ShowsNamesOfEveryKindOnOneLineOfItsTable) {
    using namespace vantorel::hardware::hbbtv::V1_0;
    ScratchDirectory directory;
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready()) << platform.Output();
    ServiceProcess service;
    const auto config = Find<IChannelConfig>();
    const auto lists = Find<IChannelList>();
    const auto channels = Find<IChannel>();
    ASSERT_TRUE(config != nullptr && lists != nullptr && channels != nullptr);
    int64_t list = 0;
    const auto keep = [&](int64_t& handle) { return [&](int32_t, int64_t result) { handle = result; }; };
    ASSERT_TRUE(config->GetChannelList(keep(list)).isOk());
    const std::string names[] = {"K\xc3\xb6ln",
                                 "\x1b[2Ja\nb\x7f\xc2\x9b"
                                 "31m",
                                 std::string(65536, 'x')};
    for (int32_t i = 0; i < 3; ++i) {
        int64_t channel = 0;
        ASSERT_TRUE(lists->Item(list, 18 + i, keep(channel)).isOk());
        ASSERT_EQ(0, static_cast<int32_t>(channels->SetName(channel, names[i])));
    }
    ChildProcess demo({HBBTV_DEMO_PROGRAM});
    EXPECT_EQ(0, demo.WaitForExit());
    ExpectInOrder(demo.Output(), {"  19  K\xc3\xb6ln                        TV        1  1107 17500\n",
                                  "  20  .[2Ja.b..31m                TV        1  1107 17501\n",
                                  "  21  " + std::string(60, 'x') + "  TV        1  1111  7200\n"});
}

TEST(Demo, SaysThatThePlatformIsDownByItsStatus) {
    ScratchDirectory directory;
    ServiceProcess service;
    ChildProcess demo({HBBTV_DEMO_PROGRAM});
    EXPECT_EQ(1, demo.WaitForExit());
    EXPECT_NE(std::string::npos, demo.Output().find("status -1")) << demo.Output();
    EXPECT_NE(std::string::npos, demo.Output().find("Something did not go as it should")) << demo.Output();
}

TEST(Demo, SaysWhatToDoWhenNoServiceIsThere) {
    ScratchDirectory directory;
    ChildProcess demo({HBBTV_DEMO_PROGRAM});
    EXPECT_EQ(3, demo.WaitForExit());
    EXPECT_NE(std::string::npos, demo.Output().find("Start it with scripts/demo")) << demo.Output();
}

}  // namespace

}  // namespace hbbtv::test
