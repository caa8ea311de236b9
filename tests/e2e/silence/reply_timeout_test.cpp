// A service with TOLM_REPLY_TIMEOUT_MS and a platform that is late.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "event_connection.h"
#include "family_calls.h"
#include "raw_listener.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

namespace {

using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;
using Clock = std::chrono::steady_clock;

constexpr int64_t kVb = 0x1000;
constexpr char kReply0[] = R"({"ret": 0})";

TEST(ReplyTimeoutOfTheService, EndsTheCallClosesTheConnectionAndTheNextCallIsAnswered) {
    const ScratchDirectory directory;
    RawListener listener(directory / "service_plugin_to_hbbtv_vb");
    ServiceProcess service("TOLM_REPLY_TIMEOUT_MS=500");
    const android::sp<IVideoBroadcast> vb = FindVideoBroadcast();
    ASSERT_NE(vb, nullptr);

    const auto begin = Clock::now();
    std::thread late([&] {
        bool called = false;
        EXPECT_TRUE(vb->GetVolume(kVb, [&](int32_t status, int32_t volume) {
                          called = true;
                          EXPECT_EQ(status, -1);
                          EXPECT_EQ(volume, 0);
                      }).isOk());
        EXPECT_TRUE(called);
    });
    RawConnection first = listener.Accept();
    ASSERT_TRUE(first.ReadFrame().has_value());
    late.join();
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(500));
    EXPECT_TRUE(first.PeerCloses());
    first.Write(FrameBytes(kReply, 7, R"({"ret": 0, "volume": 11})"));
    EXPECT_TRUE(service.WaitForOutput(" of service_plugin_to_hbbtv_vb within 500 ms, the connection is closed"));

    std::thread next([&] {
        EXPECT_TRUE(vb->GetVolume(kVb, [](int32_t status, int32_t volume) {
                          EXPECT_EQ(status, 0);
                          EXPECT_EQ(volume, 22);
                      }).isOk());
    });
    RawConnection second = listener.Accept();
    ASSERT_TRUE(second.ReadFrame().has_value());
    EXPECT_TRUE(second.Write(FrameBytes(kReply, 7, R"({"ret": 0, "volume": 22})")));
    next.join();
}

// As many as the pool has threads for all wait: the time is that of the turn and that of the reply.
TEST(ReplyTimeoutOfTheService, EndsTheCallsOfAllWhoWaitForASilentFamily) {
    const ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", [](const Frame&) { return std::nullopt; });
    ServiceProcess service("TOLM_REPLY_TIMEOUT_MS=300");
    ASSERT_NE(FindVideoBroadcast(), nullptr);
    std::vector<std::thread> callers;
    std::atomic<int> failed{0};
    for (int i = 0; i < 60; ++i) {
        callers.emplace_back([&] {
            if (Make(kFamilyCalls[0]) == -1) ++failed;
        });
    }
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(failed, 60);
    // Those who waited for their turn for that long were not sent.
    EXPECT_LT(platform.Frames().size(), 10u);
    platform.SetReply(R"({"ret": 5})");
    EXPECT_EQ(Make(kFamilyCalls[0]), 5);
}

// Registrations wait for each other, and so does the death of a client. None waits for longer than the time.
TEST(ReplyTimeoutOfTheService, EndsRegistrationsAndForgetsAClientThatDiesMeanwhile) {
    const ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", [](const Frame&) { return std::nullopt; });
    ServiceProcess service("TOLM_REPLY_TIMEOUT_MS=300");
    ASSERT_NE(FindVideoBroadcast(), nullptr);
    RegisteredClient client;
    ASSERT_TRUE(platform.WaitForFrames(1));
    constexpr FamilyCall kRegister{"video_broadcast", "IVideoBroadcast", "RegisterCallback", R"([4096, "@listen", 1])"};
    constexpr FamilyCall kUnregister{"video_broadcast", "IVideoBroadcast", "UnregisterCallback", "[4096]"};
    std::vector<std::thread> callers;
    std::atomic<int> failed{0};
    for (const FamilyCall& call : {kUnregister, kUnregister, kUnregister, kRegister, kRegister, kRegister}) {
        callers.emplace_back([&failed, call] { failed += Make(call) == -1; });
    }
    client.Kill();
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(failed, 6);
    EXPECT_TRUE(service.WaitForOutput("no turn for vantorel.hardware.hbbtv@1.0::IVideoBroadcastCallback"));
    EXPECT_TRUE(service.WaitForOutput("client died"));
    EXPECT_LT(platform.Frames().size(), 6u) << "those without a turn are not sent";

    platform.SetReply(kReply0);
    RegisteredClient next;
    ASSERT_TRUE(next.Registered()) << next.Output();
    const Endpoint endpoint = EventsOf(FindFamily("video_broadcast"));
    EventConnection events(PathOf(directory.Path(), endpoint), endpoint.port);
    ASSERT_TRUE(events.Send({R"({"type": "videobroadcast", "event": 7, "position": 7})"}));
    EXPECT_TRUE(next.WaitForOutput("onPlayPositionChanged")) << next.Output();
}

}  // namespace

}  // namespace hbbtv::test
