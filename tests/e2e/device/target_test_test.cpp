// The test that runs on a television: it passes with the simulated platform, and fails without a platform.

#include <gtest/gtest.h>

#include "finished_run.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

TEST(TargetTest, PassesWithThePlatform) {
    const ScratchDirectory directory;
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready()) << platform.Output();
    const ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr) << service.Output();
    const FinishedRun run = RunToEnd({HBBTV_TARGET_TEST_PROGRAM});
    EXPECT_EQ(run.exit, 0) << run.Text();
}

TEST(TargetTest, FailsWithoutThePlatform) {
    const ScratchDirectory directory;
    const ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr) << service.Output();
    EXPECT_EQ(RunToEnd({HBBTV_TARGET_TEST_PROGRAM, "--gtest_filter=Platform.DescribesItsChannels"}).exit, 1);
    EXPECT_EQ(RunToEnd({HBBTV_TARGET_TEST_PROGRAM, "--gtest_filter=EveryInterface*"}).exit, 0);
}

TEST(TargetTest, FailsWithoutTheService) {
    const ScratchDirectory directory;
    EXPECT_EQ(RunToEnd({HBBTV_TARGET_TEST_PROGRAM, "--gtest_filter=EveryInterface*"}).exit, 1);
}

}  // namespace

}  // namespace hbbtv::test
