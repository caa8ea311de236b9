// Receivers that share an endpoint, come and go, while a platform sends to it.
#include <android/log.h>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "build_kind.h"
#include "event_receiver.h"
#include "ipc/src/tolm_watcher.h"
#include "log_capture.h"
#include "process_usage.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

constexpr TolmIpcKeyId kKey = TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB;  // 50, 32 in hexadecimal
constexpr char kName[] = "service_hbbtv_to_plugin_vb";
constexpr char kTag[] = "[ipc_base]";

class Registry : public testing::Test {
  protected:
    RawConnection Connect() const { return RawConnection::To(mDirectory / kName); }

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    LogCapture mLog;
};

TEST_F(Registry, SharesOneServerBetweenTwoPortsOfAKey) {
    EventReceiver first(kKey, 7);
    EventReceiver second(kKey, 8);
    first.Start();
    second.Start();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Create socket server")) << mLog.Text();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_DEBUG, kTag, "ipc server start success in channel(32) port(7)"));
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_DEBUG, kTag, "ipc server start success in channel(32) port(8)"));
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(1, 7, "{\"to\":7}") + FrameBytes(1, 8, "{\"to\":8}") +
                                 FrameBytes(1, 9, "{\"to\":9}")));
    EXPECT_TRUE(mLog.WaitForLine(ANDROID_LOG_WARN, kTag, "channel(32) port(9): no receiver")) << mLog.Text();
    ASSERT_EQ(1u, first.Count());
    EXPECT_EQ(7, first.Messages()[0]["to"].asInt());
    ASSERT_EQ(1u, second.Count());
    EXPECT_EQ(8, second.Messages()[0]["to"].asInt());
}

TEST_F(Registry, KeepsTheFirstOfTwoReceiversOfOnePort) {
    EventReceiver first(kKey, 7);
    EventReceiver second(kKey, 7);
    first.Start();
    second.Start();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, kTag, "ipc server start in channel(32) port(7) repeatedly "))
        << mLog.Text();
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(1, 7, "{}")));
    EXPECT_TRUE(first.WaitForMessages(1));
    EXPECT_EQ(0u, second.Count());
}

TEST_F(Registry, EndsTheServerWithTheLastPort) {
    auto first = std::make_unique<EventReceiver>(kKey, 7);
    auto second = std::make_unique<EventReceiver>(kKey, 8);
    first->Start();
    second->Start();
    RawConnection connection = Connect();
    first.reset();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_DEBUG, kTag, "ipc server stop success in channel(32) port(7)"));
    ASSERT_TRUE(connection.Write(FrameBytes(1, 8, "{}")));
    EXPECT_TRUE(second->WaitForMessages(1));
    second.reset();
    EXPECT_TRUE(connection.PeerCloses());
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_DEBUG, kTag, "ipc server stop success in channel(32) port(8)"));
}

TEST_F(Registry, BuildsANewServerAfterTheLastPortHasGone) {
    tolm::Watcher::Wake();  // has a thread of its own from the first message on
    const int threads = UsageOfThisProcess().threads;
    for (int round = 1; round <= 20; ++round) {
        EventReceiver receiver(kKey, 7);
        receiver.Start();
        EXPECT_EQ(round, mLog.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Create socket server"));
        RawConnection connection = Connect();
        ASSERT_TRUE(connection.Write(FrameBytes(1, 7, "{}")));
        EXPECT_TRUE(receiver.WaitForMessages(1));
    }
    // The kernel counts a thread for a moment after it was joined.
    EXPECT_TRUE(WaitFor([&] { return UsageOfThisProcess().threads == threads; }));
}

TEST_F(Registry, IgnoresTheEndOfAReceiverThatNeverBegan) {
    { const EventReceiver never(kKey, 7); }
    EXPECT_EQ(0u, mLog.Lines().size()) << mLog.Text();
    EXPECT_FALSE(std::filesystem::exists(mDirectory / kName));
}

TEST_F(Registry, KeepsTheEndpointsOfDifferentKeysApart) {
    EventReceiver broadcast(kKey, 7);
    EventReceiver search(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_SM, 7);
    broadcast.Start();
    search.Start();
    RawConnection connection = RawConnection::To(mDirectory / "service_hbbtv_to_plugin_sm");
    ASSERT_TRUE(connection.Write(FrameBytes(1, 7, "{}")));
    EXPECT_TRUE(search.WaitForMessages(1));
    EXPECT_EQ(0u, broadcast.Count());
}

TEST_F(Registry, HandlesOneMessageOfAKeyAtATime) {
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    const auto handler = [&](const Json::Value&, Json::Value&) {
        const int now = ++inside;
        if (now > most) most = now;
        std::this_thread::yield();
        --inside;
    };
    EventReceiver first(kKey, 7, handler);
    EventReceiver second(kKey, 8, handler);
    first.Start();
    second.Start();
    std::vector<std::thread> platforms;
    for (int i = 0; i < 4; ++i) {
        platforms.emplace_back([this, i] {
            RawConnection connection = Connect();
            for (int n = 0; n < 200; ++n) {
                ASSERT_TRUE(connection.Write(FrameBytes(2, 7 + i % 2, "{}")));
                ASSERT_TRUE(connection.ReadFrame().has_value());
            }
        });
    }
    for (std::thread& platform : platforms) platform.join();
    EXPECT_EQ(1, most);
}

// A receiver whose memory is gone when it is called would be reported by the sanitizers, and crash or count elsewhere.
TEST_F(Registry, NeverCallsAReceiverThatWasDeletedWhileMessagesFlow) {
    EventReceiver staying(kKey, 8);
    staying.Start();
    std::atomic<bool> stop{false};
    std::vector<std::thread> platforms;
    for (int i = 0; i < 3; ++i) {
        platforms.emplace_back([&, i] {
            RawConnection connection = Connect();
            while (!stop) connection.Write(FrameBytes(1, i == 0 ? 8 : 7, "{\"a\":[1,2,3]}"));
        });
    }
    for (int round = 0; round < (kSanitized ? 50 : 500); ++round) {
        EventReceiver receiver(kKey, 7);
        receiver.Start();
        ASSERT_TRUE(receiver.WaitForMessages(1));
    }
    stop = true;
    for (std::thread& platform : platforms) platform.join();
    EXPECT_GT(staying.Count(), 0u);
}

TEST_F(Registry, DeletesTheLastPortWhileMessagesFlow) {
    std::atomic<bool> stop{false};
    std::vector<std::thread> platforms;
    auto receiver = std::make_unique<EventReceiver>(kKey, 7);
    receiver->Start();
    for (int i = 0; i < 3; ++i) {
        platforms.emplace_back([&] {
            while (!stop) {
                RawConnection connection = Connect();
                while (!stop && connection.Write(FrameBytes(1, 7, "{}"))) {
                }
            }
        });
    }
    for (int round = 0; round < (kSanitized ? 20 : 100); ++round) {
        ASSERT_TRUE(receiver->WaitForMessages(1));
        receiver = std::make_unique<EventReceiver>(kKey, 7);
        receiver->Start();
    }
    stop = true;
    for (std::thread& platform : platforms) platform.join();
}

// The handler that the deletion waits for is not held up by it.
TEST_F(Registry, ServesOtherEndpointsFromAHandlerWhileItsOwnIsDeleted) {
    std::atomic<bool> inside{false};
    std::atomic<bool> deleting{false};
    auto receiver = std::make_unique<EventReceiver>(kKey, 7, [&](const Json::Value&, Json::Value&) {
        inside = true;
        WaitFor([&] { return deleting.load(); });
        // Some of these rounds find the deletion waiting.
        for (int round = 0; round < 100; ++round) {
            EventReceiver other(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_SM, 8);
            other.Start();
        }
    });
    receiver->Start();
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "{}")));
    ASSERT_TRUE(WaitFor([&] { return inside.load(); }));
    deleting = true;
    receiver.reset();
    EXPECT_EQ(100, mLog.Count(ANDROID_LOG_DEBUG, kTag, "ipc server stop success in channel(31) port(8)"));
}

TEST_F(Registry, TakesAnotherPortWhileAHandlerRuns) {
    std::atomic<bool> inside{false};
    std::atomic<bool> release{false};
    EventReceiver first(kKey, 7, [&](const Json::Value&, Json::Value&) {
        inside = true;
        EXPECT_TRUE(WaitFor([&] { return release.load(); }));
    });
    first.Start();
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "{}")));
    ASSERT_TRUE(WaitFor([&] { return inside.load(); }));
    EventReceiver second(kKey, 8);
    second.Start();
    release = true;
    ASSERT_TRUE(connection.ReadFrame().has_value());
    ASSERT_TRUE(connection.Write(FrameBytes(1, 8, "{}")));
    EXPECT_TRUE(second.WaitForMessages(1));
}

TEST_F(Registry, IsUsedByManyThreadsAtOnce) {
    std::vector<std::thread> threads;
    for (int port = 0; port < 6; ++port) {
        threads.emplace_back([this, port] {
            for (int round = 0; round < 30; ++round) {
                EventReceiver receiver(kKey, port);
                receiver.Start();
                // The endpoint may be a new one by the time of the message, when another thread has ended the old.
                ASSERT_TRUE(WaitFor([&] {
                    RawConnection connection = Connect();
                    connection.Write(FrameBytes(2, port, "{}"));
                    connection.Read(12);
                    return receiver.Count() > 0;
                }));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace

}  // namespace hbbtv::test
