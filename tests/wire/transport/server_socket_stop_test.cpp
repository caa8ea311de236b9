// A server's end: whatever its connections are doing, its destructor returns, and nothing runs afterwards.
#include <sys/socket.h>
#include <sys/un.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "ipc/socket/tolm_ipc_server_socket.h"
#include "process_usage.h"
#include "raw_socket.h"
#include "recording_delegate.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

using tolm::TolmIpcServerSocket;

constexpr TolmIpcKeyId kKey = TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB;

class StoppingServer : public testing::Test {
  protected:
    StoppingServer() : mBefore(UsageOfThisProcess()) { Start(); }

    // No thread and no descriptor is left of servers that have gone and connections that the test has closed.
    void TearDown() override {
        mServer.reset();
        EXPECT_EQ(mBefore.descriptors, UsageOfThisProcess().descriptors);
        // The kernel counts a thread for a moment after it was joined.
        EXPECT_TRUE(WaitFor([this] { return UsageOfThisProcess().threads == mBefore.threads; }));
    }

    void Start() {
        mServer = std::make_unique<TolmIpcServerSocket>(kKey, &mDelegate);
        mServer->Start();
    }

    RawConnection Connect() const { return RawConnection::To(mDirectory / "service_hbbtv_to_plugin_vb"); }

    // A connection whose thread is known to run.
    RawConnection ConnectAndAsk() {
        RawConnection connection = Connect();
        EXPECT_TRUE(connection.Write(FrameBytes(2, 7, "hello")));
        EXPECT_TRUE(connection.ReadFrame().has_value());
        return connection;
    }

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    RecordingDelegate mDelegate;
    const ProcessUsage mBefore;
    std::unique_ptr<TolmIpcServerSocket> mServer;
};

TEST_F(StoppingServer, WithoutConnectionsEnds) {
    mServer.reset();
}

TEST_F(StoppingServer, ThatWasNeverStartedEnds) {
    mServer = std::make_unique<TolmIpcServerSocket>(kKey, &mDelegate);
}

TEST_F(StoppingServer, EndsRightAfterItsStart) {
    for (int round = 0; round < 200; ++round) Start();
}

TEST_F(StoppingServer, ClosesIdleConnections) {
    RawConnection first = ConnectAndAsk();
    RawConnection second = ConnectAndAsk();
    mServer.reset();
    EXPECT_TRUE(first.PeerCloses());
    EXPECT_TRUE(second.PeerCloses());
}

TEST_F(StoppingServer, ClosesHalfSentConnections) {
    const std::string bytes = FrameBytes(1, 7, std::string(3000, 'x'));
    for (const size_t cut : {1, 8, 11, 12, 13, 1500, 3011}) {
        RawConnection connection = ConnectAndAsk();
        ASSERT_TRUE(connection.Write(bytes.substr(0, cut)));
        mServer.reset();
        EXPECT_TRUE(connection.PeerCloses());
        Start();
    }
    for (const Frame& frame : mDelegate.Frames()) EXPECT_EQ("hello", frame.payload);
}

TEST_F(StoppingServer, WaitsForAHandlerThatRuns) {
    std::atomic<bool> release{false};
    std::atomic<bool> ended{false};
    RecordingDelegate slow([&](const Frame&) {
        WaitFor([&release] { return release.load(); });
        ended = true;
        return "done";
    });
    auto server = std::make_unique<TolmIpcServerSocket>(kKey, &slow);
    server->Start();
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "wait")));
    ASSERT_TRUE(slow.WaitForFrames(1));
    std::thread stopping([&] {
        server.reset();
        EXPECT_TRUE(ended);
    });
    // The stop has begun when the connection is shut down.
    EXPECT_TRUE(connection.PeerCloses());
    EXPECT_FALSE(ended);
    release = true;
    stopping.join();
}

TEST_F(StoppingServer, GivesUpAReplyThatThePeerDoesNotRead) {
    RecordingDelegate large([](const Frame&) { return std::string(16 << 20, 'x'); });
    auto server = std::make_unique<TolmIpcServerSocket>(kKey, &large);
    server->Start();
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "question")));
    EXPECT_EQ(100u, connection.Read(100).size());  // the thread writes, and is held up by a full socket
    server.reset();
}

TEST_F(StoppingServer, EndsWhileMessagesFlow) {
    for (int round = 0; round < 20; ++round) {
        std::vector<RawConnection> connections;
        for (int i = 0; i < 4; ++i) connections.push_back(Connect());
        std::vector<std::thread> platforms;
        for (RawConnection& connection : connections) {
            platforms.emplace_back([&connection] {
                while (connection.Write(FrameBytes(1, 7, "event"))) {
                }
            });
        }
        ASSERT_TRUE(mDelegate.WaitForFrames(mDelegate.Count() + 100));
        mServer.reset();
        const size_t count = mDelegate.Count();
        for (std::thread& platform : platforms) platform.join();
        EXPECT_EQ(count, mDelegate.Count());
        Start();
    }
}

TEST_F(StoppingServer, EndsWhilePlatformsConnect) {
    std::atomic<bool> stop{false};
    std::vector<std::thread> platforms;
    for (int i = 0; i < 4; ++i) {
        platforms.emplace_back([&] {
            while (!stop) {
                RawConnection connection = Connect();
                connection.Write(FrameBytes(1, 7, "event"));
            }
        });
    }
    for (int round = 0; round < 100; ++round) {
        ASSERT_TRUE(mDelegate.WaitForFrames(mDelegate.Count() + 5));
        mServer.reset();
        Start();
    }
    stop = true;
    for (std::thread& platform : platforms) platform.join();
}

TEST_F(StoppingServer, ClosesAHundredConnections) {
    std::vector<RawConnection> connections;
    for (int i = 0; i < 100; ++i) connections.push_back(ConnectAndAsk());
    mServer.reset();
    for (RawConnection& connection : connections) EXPECT_TRUE(connection.PeerCloses());
}

TEST_F(StoppingServer, IsNoLongerReachable) {
    mServer.reset();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = mDirectory / "service_hbbtv_to_plugin_vb";
    memcpy(address.sun_path, path.c_str(), path.size());
    const RawConnection connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    EXPECT_NE(0, connect(connection.Fd(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
    EXPECT_EQ(ECONNREFUSED, errno);
}

TEST_F(StoppingServer, JoinsThreadsOfEndedConnectionsAsItGoesOn) {
    RawConnection staying = ConnectAndAsk();
    const int threads = UsageOfThisProcess().threads;
    for (int round = 0; round < 200; ++round) ConnectAndAsk();
    EXPECT_TRUE(WaitFor([&] { return UsageOfThisProcess().threads <= threads; }));
}

}  // namespace

}  // namespace hbbtv::test
