// Client, service and platform as processes that start and end: nothing hangs, and the others continue.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include "finished_run.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using android::sp;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;
using vantorel::hardware::hbbtv::V1_0::TolmVBPlayState;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kKilledClients = 50;  // processes take ten times as long to start
#else
constexpr int kKilledClients = 500;
#endif

constexpr int64_t kVb = 0x1000;

int32_t StatusOf(const android::hardware::Return<int32_t>& status) {
    return status.isOk() ? static_cast<int32_t>(status) : -1000;
}

long ThreadsOf(pid_t pid) {
    const std::filesystem::directory_iterator tasks("/proc/" + std::to_string(pid) + "/task");
    return std::distance(begin(tasks), end(tasks));
}

std::string PositionEvent(int position) {
    return FrameBytes(kOneWay, 7,
                      R"({"type": "videobroadcast", "event": 7, "position": )" + std::to_string(position) + "}");
}

// Sends an event repeatedly from its own thread.
class EventStream {
  public:
    explicit EventStream(const std::string& socket)
        : mThread([this, socket] {
              RawConnection connection = RawConnection::To(socket);
              while (!mStop && connection.Write(PositionEvent(++mSent))) {
              }
          }) {}

    ~EventStream() {
        mStop = true;
        mThread.join();
    }

    int Sent() const { return mSent; }

  private:
    std::atomic<bool> mStop{false};
    std::atomic<int> mSent{0};
    std::thread mThread;
};

TEST(ServiceAtItsStart, LogsADirectoryInWhichOthersCanReplaceItsSockets) {
    const ScratchDirectory directory;
    const std::string line =
        directory.Path() + "/ has mode 777: without the sticky bit, others can replace the sockets";
    chmod(directory.Path().c_str(), 0777);
    {
        const ServiceProcess service;
        EXPECT_TRUE(service.WaitForOutput(line)) << service.Output();
    }
    chmod(directory.Path().c_str(), 01777);
    const ServiceProcess service;
    EXPECT_TRUE(service.WaitForOutput("IVideoBroadcast/default\n"));
    EXPECT_EQ(service.Output().find("sticky bit"), std::string::npos) << service.Output();
}

// Needs root, like the other tests with a second user.
TEST(ServiceAtItsStart, LogsFilesOfItsSocketsThatBelongToAnotherUser) {
    const ScratchDirectory directory;
    constexpr uid_t kOther = 4711;
    for (const char* name : {"service_hbbtv_to_mtm", "service_dsmcc_to_hbbtv_port_2", "service_dsmcc_to_hbbtv"}) {
        std::ofstream(directory / name).close();
        ASSERT_EQ(chown((directory / name).c_str(), kOther, kOther), 0);
    }
    const ServiceProcess service;
    EXPECT_TRUE(service.WaitForOutput("IVideoBroadcast/default\n"));
    const std::string output = service.Output();
    const std::string belongs = " belongs to user 4711, not to " + std::to_string(geteuid()) + ": ";
    EXPECT_NE(output.find("/service_hbbtv_to_mtm" + belongs), std::string::npos) << output;
    EXPECT_NE(output.find("/service_dsmcc_to_hbbtv_port_2" + belongs), std::string::npos) << output;
    EXPECT_EQ(output.find("/service_dsmcc_to_hbbtv" + belongs), std::string::npos) << "the platform's own\n" << output;
}

TEST(Processes, AClientKilledWhileEventsFlowIsNoticedAndTheNextOneIsServed) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", R"({"ret": 0})");
    ServiceProcess service;
    ASSERT_NE(nullptr, FindVideoBroadcast());
    {
        RegisteredClient first;  // the family's socket is served after its first call
        ASSERT_TRUE(first.Registered()) << first.Output();
        EventStream events(directory / "service_hbbtv_to_plugin_vb");
        for (int i = 0; i < kKilledClients; ++i) {
            RegisteredClient client;
            ASSERT_TRUE(client.Registered()) << client.Output();
            ASSERT_TRUE(client.WaitForOutput("onPlayPositionChanged ")) << "client " << i << " got no event";
            client.Kill();
        }
    }
    ASSERT_TRUE(service.WaitForOutput("ClientDeathRecipient::serviceDied - client died"));
    RegisteredClient last;
    ASSERT_TRUE(last.Registered()) << last.Output();
    RawConnection connection = RawConnection::To(directory / "service_hbbtv_to_plugin_vb");
    ASSERT_TRUE(connection.Write(PositionEvent(123456789)));
    EXPECT_TRUE(last.WaitForOutput("onPlayPositionChanged [123456789]\n"));
    EXPECT_FALSE(service.WaitForExit(std::chrono::milliseconds(0)).has_value());
}

TEST(Processes, TheDeathOfARegisteredClientIsLoggedOnceAndClearsItsRegistration) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", R"({"ret": 0})");
    ServiceProcess service;
    RegisteredClient client;
    ASSERT_TRUE(client.Registered()) << client.Output();
    client.Kill();
    ASSERT_TRUE(service.WaitForOutput("ClientDeathRecipient::StopMonitor"));
    const std::string died = "ClientDeathRecipient::serviceDied - client died";
    EXPECT_EQ(service.Output().find(died), service.Output().rfind(died));

    RawConnection connection = RawConnection::To(directory / "service_hbbtv_to_plugin_vb");
    ASSERT_TRUE(connection.Write(PositionEvent(1)));
    EXPECT_TRUE(service.WaitForOutput("m_cb is null"));
}

TEST(Processes, AClientThatUnregistersGetsNoEventsAndItsEndIsNoDeath) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", R"({"ret": 0})");
    ServiceProcess service;
    RegisteredClient client;
    ASSERT_TRUE(client.Registered()) << client.Output();
    client.Write("unregister\n");
    ASSERT_TRUE(client.WaitForOutput("unregistered"));
    client.Kill();
    RegisteredClient next;  // registered after any notice of the first one's death
    ASSERT_TRUE(next.Registered());
    EXPECT_EQ(std::string::npos, service.Output().find("client died"));
}

TEST(Processes, EventsReachTheClientInTheirOrderAndNoneIsLost) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", R"({"ret": 0})");
    ServiceProcess service;
    RegisteredClient client;
    ASSERT_TRUE(client.Registered()) << client.Output();
    constexpr int kEvents = 2000;
    RawConnection connection = RawConnection::To(directory / "service_hbbtv_to_plugin_vb");
    std::string expected = "registered\n";
    for (int i = 1; i <= kEvents; ++i) {
        ASSERT_TRUE(connection.Write(PositionEvent(i)));
        expected += "onPlayPositionChanged [" + std::to_string(i) + "]\n";
    }
    ASSERT_TRUE(client.WaitForOutput("onPlayPositionChanged [" + std::to_string(kEvents) + "]\n"));
    EXPECT_EQ(expected, client.Output());
}

TEST(Processes, AClientThatWaitsWhenTheServiceIsKilledIsAnsweredByAFailure) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", [](const Frame&) { return std::nullopt; });
    auto service = std::make_unique<ServiceProcess>();
    const sp<IVideoBroadcast> before = FindVideoBroadcast();
    ASSERT_NE(nullptr, before);

    std::atomic<bool> failed{false};
    std::thread waiting([&] { failed = before->NextChannel(kVb).isDeadObject(); });
    ASSERT_TRUE(platform.WaitForFrames(1));
    service->Kill();
    waiting.join();
    EXPECT_TRUE(failed);
    EXPECT_TRUE(before->NextChannel(kVb).isDeadObject());

    platform.SetReply(R"({"ret": 0})");
    service = std::make_unique<ServiceProcess>();
    const sp<IVideoBroadcast> after = FindVideoBroadcast();
    ASSERT_NE(nullptr, after);
    EXPECT_EQ(0, StatusOf(after->NextChannel(kVb)));
}

TEST(Processes, ThePlatformKilledAndRestartedInTheMiddleOfRequestsIsUsedAgain) {
    ScratchDirectory directory;
    ServiceProcess service;
    const sp<IVideoBroadcast> vb = FindVideoBroadcast();
    ASSERT_NE(nullptr, vb);
    std::atomic<bool> stop{false};
    std::atomic<int> answered{0};
    std::atomic<int> lost{0};
    std::vector<std::thread> clients;
    for (int i = 0; i < 4; ++i) {
        clients.emplace_back([&] {
            while (!stop) ++(StatusOf(vb->ChangeDisplaySource(0)) == 0 ? answered : lost);
        });
    }
    for (int restart = 0; restart < 10; ++restart) {
        SimulatedPlatform platform;
        ASSERT_TRUE(platform.Ready()) << platform.Output();
        const int before = answered;
        EXPECT_TRUE(WaitFor([&] { return answered > before + 20; })) << "restart " << restart;
        platform.Kill();
        const int lostBefore = lost;
        EXPECT_TRUE(WaitFor([&] { return lost > lostBefore; }));
    }
    stop = true;
    for (std::thread& client : clients) client.join();
}

TEST(Processes, APlayHoldsAfterThePlatformHasBeenRestarted) {
    ScratchDirectory directory;
    std::ofstream(directory / "restart.play") << "IChannelConfig.GetChannelList() -> 0, $list\n"
                                                 "IChannelList.GetLength($list) -> 0, $length\n"
                                                 "ILocalSystem.GetVendorName() -> 0, $vendor\n"
                                                 "IChannelList.Release($list)\n";
    ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr);
    for (int run = 0; run < 2; ++run) {
        SimulatedPlatform platform;
        ASSERT_TRUE(platform.Ready()) << platform.Output();
        const FinishedRun played = RunToEnd({HBBTVCTL_PROGRAM, "play", directory / "restart.play"});
        EXPECT_EQ(played.exit, 0) << run << played.Text();
    }
    // Other failures are not repeated.
    std::ofstream(directory / "wrong.play") << "IChannel.GetName(1) -> 0, $name\nIChannel.GetName(1) -> 0, $name\n";
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready()) << platform.Output();
    EXPECT_EQ(RunToEnd({HBBTVCTL_PROGRAM, "play", directory / "wrong.play"}).exit, 7);
}

TEST(Processes, ClientsThatAllWaitForASilentFamilyLeaveTheServiceAnswering) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", [](const Frame&) { return std::nullopt; });
    ServiceProcess service;
    const sp<IVideoBroadcast> vb = FindVideoBroadcast();
    ASSERT_NE(nullptr, vb);
    std::vector<std::thread> waiting;
    for (int i = 0; i < 60; ++i) {
        waiting.emplace_back([&] { EXPECT_FALSE(vb->NextChannel(kVb).isOk()); });
    }
    ASSERT_TRUE(WaitFor([&] { return ThreadsOf(service.Pid()) >= 60; }));
    // This method does not use the platform.
    EXPECT_EQ(0, StatusOf(vb->SetChannel_Ext(kVb, 0, false, "", 0)));
    EXPECT_TRUE(vb->ping().isOk());
    service.Kill();
    for (std::thread& thread : waiting) thread.join();
}

TEST(Processes, AServiceThatCannotFindItsImplementationSaysSoAndEnds) {
    ScratchDirectory directory;
    ChildProcess service({HBBTV_SERVICE_PROGRAM}, {"HIDL_HOST_PASSTHROUGH_PATH=" + directory.Path()});
    EXPECT_EQ(1, service.WaitForExit());
    EXPECT_NE(std::string::npos, service.Output().find("cannot serve")) << service.Output();
}

}  // namespace

}  // namespace hbbtv::test
