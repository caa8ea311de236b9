// The one instance of the video/broadcast adaptor: how it comes and goes.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>

#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "log_capture.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

namespace {

using Vb = TolmVideoBroadcastAdaptorIpc;

constexpr char kStarted[] = "ipc server start success in channel(32) port(7)";
constexpr char kStopped[] = "ipc server stop success in channel(32) port(7)";
constexpr char kEvent[] =
    "{\"type\": \"videobroadcast\", \"event\": 8, \"context\": \"0xabcd\", \"recordingId\": \"r\"}";

std::atomic<bool> gExists{false};
std::atomic<int> gEvents{0};
std::atomic<int> gEventsWithoutInstance{0};

void Receive(const TolmVideoBroadcastEvent& event, const TolmVideoBroadcastEventInfo& info, const void*) {
    TolmVideoBroadcastEventInfo mine = info;
    ++gEvents;
    if (!gExists) ++gEventsWithoutInstance;
    TolmFreeVideoBroadcastEventInfo(event, mine);
}

std::atomic<bool> gInHandler{false};
std::atomic<bool> gDeleting{false};
std::atomic<int> gOtherInstances{0};

// Asks for the instance again and again, from before its deletion begins until that waits for this handler.
void AskForTheInstance(const TolmVideoBroadcastEvent&, const TolmVideoBroadcastEventInfo&, const void*) {
    Vb* const instance = Vb::GetInstance();
    gInHandler = true;
    WaitFor([] { return gDeleting.load(); });
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
    while (std::chrono::steady_clock::now() < end) {
        if (Vb::GetInstance() != instance) ++gOtherInstances;
    }
}

class VideoBroadcastInstance : public ::testing::Test {
  protected:
    ~VideoBroadcastInstance() override { Vb::DeleteInstance(); }

    std::string ServedSocket() const { return mDirectory / EventsOf(UnderTest().Wire()).socket; }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0, \"state\": 2}"};
};

}  // namespace

TEST_F(VideoBroadcastInstance, IsMadeWithItsFirstUse) {
    EXPECT_FALSE(std::filesystem::exists(ServedSocket()));
    ASSERT_NE(Vb::GetInstance(), nullptr);
    EXPECT_EQ(Vb::GetInstance(), Vb::GetInstance());
    EXPECT_EQ(mLog.Count(3, "[ipc_base]", kStarted), 1) << mLog.Text();
    RawConnection::To(ServedSocket());
    // It connects to the platform with its first request only.
    EXPECT_EQ(mPlatform.Connections(), 0);
    EXPECT_EQ(Vb::GetInstance()->Stop(nullptr), 0);
    EXPECT_EQ(mPlatform.Connections(), 1);
}

TEST_F(VideoBroadcastInstance, OfManyThreadsIsOneWithOneServer) {
    constexpr int kThreads = 16;
    std::atomic<int> ready{0};
    std::atomic<bool> go{false};
    std::vector<Vb*> instances(kThreads);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            ++ready;
            while (!go) std::this_thread::yield();
            instances[i] = Vb::GetInstance();
        });
    }
    EXPECT_TRUE(WaitFor([&] { return ready == kThreads; }));
    go = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(std::set<Vb*>(instances.begin(), instances.end()).size(), 1u);
    ASSERT_NE(instances[0], nullptr);
    EXPECT_EQ(mLog.Count(3, "[ipc_base]", kStarted), 1) << mLog.Text();
    int servers = 0;
    for (const LogLine& line : mLog.Lines()) {
        if (line.message.rfind("socket_name:service_hbbtv_to_plugin_vb,", 0) == 0) ++servers;
        EXPECT_EQ(line.message.find("repeatedly"), std::string::npos);
    }
    EXPECT_EQ(servers, 1) << mLog.Text();
}

TEST_F(VideoBroadcastInstance, CanBeDeletedAndMadeAgain) {
    for (int i = 0; i < 3; ++i) {
        ASSERT_NE(Vb::GetInstance(), nullptr);
        int state = 0;
        EXPECT_EQ(Vb::GetInstance()->GetPlayState(nullptr, state), 0);
        EXPECT_EQ(state, 2);
        RawConnection platform = RawConnection::To(ServedSocket());
        platform.Write(FrameBytes(kRequest, 7, "{\"context\": \"\"}"));
        EXPECT_TRUE(platform.ReadFrame().has_value());
        mLog.Clear();
        Vb::DeleteInstance();
        EXPECT_EQ(mLog.Count(3, "[ipc_base]", kStopped), 1) << mLog.Text();
        EXPECT_TRUE(platform.PeerCloses());
    }
    EXPECT_EQ(mPlatform.Connections(), 3);
}

TEST_F(VideoBroadcastInstance, ForgetsItsReceiversWhenItIsDeleted) {
    Vb::GetInstance()->RegisterCallback(nullptr, &Receive, reinterpret_cast<const void*>(0xabcd));
    Vb::DeleteInstance();
    Vb::GetInstance();
    RawConnection platform = RawConnection::To(ServedSocket());
    platform.Write(FrameBytes(kRequest, 7, kEvent));
    const std::optional<Frame> reply = platform.ReadFrame();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->payload, "null\n");
    EXPECT_EQ(gEvents, 0);
}

TEST_F(VideoBroadcastInstance, NeedNotExistToBeDeleted) {
    Vb::DeleteInstance();
    Vb::DeleteInstance();
    EXPECT_EQ(mLog.Count(3, "[ipc_base]", kStopped), 0);
    EXPECT_NE(Vb::GetInstance(), nullptr);
}

TEST_F(VideoBroadcastInstance, IsThereForAHandlerThatItsDeletionWaitsFor) {
    ASSERT_EQ(Vb::GetInstance()->RegisterCallback(nullptr, &AskForTheInstance, nullptr), 0);
    RawConnection platform = RawConnection::To(ServedSocket());
    platform.Write(FrameBytes(kOneWay, 7, "{\"type\": \"videobroadcast\", \"event\": 4}"));
    ASSERT_TRUE(WaitFor([] { return gInHandler.load(); }));
    gDeleting = true;
    Vb::DeleteInstance();
    EXPECT_EQ(gOtherInstances, 0);
}

TEST_F(VideoBroadcastInstance, GoesPromptlyWhileEventsCome) {
    std::atomic<bool> stop{false};
    std::vector<std::thread> senders;
    for (int i = 0; i < 3; ++i) {
        senders.emplace_back([&] {
            while (!stop) {
                // Between two instances there is no receiver.
                if (!gExists) {
                    std::this_thread::yield();
                    continue;
                }
                RawConnection connection = RawConnection::To(ServedSocket());
                while (!stop && connection.Write(FrameBytes(kOneWay, 7, kEvent)) &&
                       connection.Write(FrameBytes(kRequest, 7, kEvent)) && connection.ReadFrame()) {
                }
            }
        });
    }
    for (int i = 0; i < 20; ++i) {
        gExists = true;
        ASSERT_EQ(Vb::GetInstance()->RegisterCallback(nullptr, &Receive, reinterpret_cast<const void*>(0xabcd)), 0);
        const int before = gEvents;
        EXPECT_TRUE(WaitFor([&] { return gEvents > before + 3; }));
        const auto start = std::chrono::steady_clock::now();
        Vb::DeleteInstance();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
        gExists = false;
    }
    // For a sender that still tries to connect.
    gExists = true;
    ASSERT_NE(Vb::GetInstance(), nullptr);
    stop = true;
    for (std::thread& sender : senders) sender.join();
    EXPECT_EQ(gEventsWithoutInstance, 0);
}

}  // namespace hbbtv::test
