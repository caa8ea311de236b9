// Peers that take all the connections they can get: the families keep answering, also those that have not connected to
// the platform yet.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <vantorel/hardware/hbbtv/1.0/IMtm.h>

#include <list>
#include <string>
#include <vector>

#include "every_family.h"
#include "process_usage.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using android::sp;
using vantorel::hardware::hbbtv::V1_0::IMtm;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;

constexpr int kConnections = 1412;
constexpr int kDescriptors = 1024;
constexpr int kReserve = 18 + 64;

class ConnectionFlood : public testing::Test {
  protected:
    void SetUp() override {
        const sp<IVideoBroadcast> video = FindVideoBroadcast();  // the service registers it last
        ASSERT_NE(video, nullptr);
        const rlimit limit{kDescriptors, kDescriptors};
        ASSERT_EQ(prlimit(mService.Pid(), RLIMIT_NOFILE, &limit, nullptr), 0);
        // The other families connect for the first time during the flood.
        ASSERT_TRUE(video->NextChannel(1).isOk());
        ASSERT_TRUE(Find<IMtm>()->OnTabCreated(1).isOk());
    }

    void FloodFrom(int processes) {
        const std::vector<std::string> command = {
            HBBTV_CONNECTION_FLOOD_PROGRAM, std::to_string(kConnections / processes),
            mDirectory / "service_hbbtv_to_plugin_vb", mDirectory / "service_hbbtv_to_mtm"};
        for (int i = 0; i < processes; ++i) mPeers.emplace_back(command);
        for (ChildProcess& peer : mPeers) ASSERT_TRUE(peer.WaitForOutput("done", std::chrono::minutes(1)));
    }

    ScratchDirectory mDirectory;
    EveryFamily mPlatform;
    ServiceProcess mService;
    std::list<ChildProcess> mPeers;
};

TEST_F(ConnectionFlood, OfOneProcessLeavesEveryFamilyAnswering) {
    FloodFrom(1);
    EXPECT_LT(UsageOf(mService.Pid()).descriptors, 256 + 2 * kReserve);
    EXPECT_EQ(EveryFamily::Unanswered(), "");
    EXPECT_TRUE(mService.WaitForOutput("holds 256 connections, closing a further one")) << mService.Output();
}

TEST_F(ConnectionFlood, OfTenProcessesLeavesEveryFamilyAnswering) {
    FloodFrom(10);
    EXPECT_LE(UsageOf(mService.Pid()).descriptors, kDescriptors - kReserve);
    EXPECT_EQ(EveryFamily::Unanswered(), "");
    EXPECT_TRUE(mService.WaitForOutput("too many descriptors in use, accepting pauses")) << mService.Output();
    mPeers.clear();
    EXPECT_TRUE(WaitFor([&] { return UsageOf(mService.Pid()).descriptors < 2 * kReserve; }))
        << ToText(UsageOf(mService.Pid()));
}

}  // namespace

}  // namespace hbbtv::test
