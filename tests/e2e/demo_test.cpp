// The demo against the simulated platform: what a new user sees first.

#include <gtest/gtest.h>

#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

TEST(Demo, TellsOfTheChannelChangesAndEndsWell) {
    ScratchDirectory directory;
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready()) << platform.Output();
    ServiceProcess service;
    ChildProcess demo({HBBTV_DEMO_PROGRAM});
    EXPECT_EQ(0, demo.WaitForExit());

    // In this order, whatever stands between.
    size_t at = 0;
    for (const char* text : {"Create(context 0xbeef)",
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
                             "Rai 1 HD",
                             "onChannelChangeError",
                             "encrypted",
                             "UnregisterCallback",
                             "Destroy",
                             "All went as it should."}) {
        at = demo.Output().find(text, at);
        ASSERT_NE(std::string::npos, at) << text << " is not where it should be in:\n" << demo.Output();
    }
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
