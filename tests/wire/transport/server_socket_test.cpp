// The server socket: its file, what it hands on, and that each connection gets its own replies.
#include <android/log.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "build_kind.h"
#include "ipc/socket/tolm_ipc_server_socket.h"
#include "log_capture.h"
#include "process_usage.h"
#include "raw_listener.h"
#include "raw_socket.h"
#include "recording_delegate.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

using tolm::TolmIpcServerSocket;

constexpr TolmIpcKeyId kKey = TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB;
constexpr char kName[] = "service_hbbtv_to_plugin_vb";

class ServerSocket : public testing::Test {
  protected:
    RawConnection Connect() const { return RawConnection::To(mDirectory / kName); }

    void Start() {
        mServer = std::make_unique<TolmIpcServerSocket>(kKey, &mDelegate);
        mServer->Start();
    }

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    LogCapture mLog;
    RecordingDelegate mDelegate;
    std::unique_ptr<TolmIpcServerSocket> mServer;
};

void ExpectReply(RawConnection& connection, int port, const std::string& payload) {
    const std::optional<Frame> reply = connection.ReadFrame();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(3, reply->type);
    EXPECT_EQ(port, reply->port);
    EXPECT_EQ(payload, reply->payload);
}

TEST_F(ServerSocket, MakesAFileForEverybodyAndSaysSoAsAnError) {
    Start();
    struct stat status {};
    ASSERT_EQ(0, stat((mDirectory / kName).c_str(), &status));
    EXPECT_TRUE(S_ISSOCK(status.st_mode));
    EXPECT_EQ(0777u, status.st_mode & 07777);
    ASSERT_EQ(1u, mLog.Lines().size()) << mLog.Text();
    const LogLine line = mLog.Lines()[0];
    EXPECT_EQ(ANDROID_LOG_ERROR, line.priority);
    EXPECT_EQ("tolm_IPC", line.tag);
    EXPECT_EQ("tolm_ipc_server_socket.cpp", line.file);
    EXPECT_EQ("socket_name:service_hbbtv_to_plugin_vb, socket_path:" + mDirectory / kName, line.message);
    EXPECT_EQ("tolm_IPC \"" + line.message + "\"\n", mOut.Text());
}

TEST_F(ServerSocket, ReplacesTheFileOfAnEarlierRun) {
    { const RawListener earlier(mDirectory / "earlier"); }
    std::ofstream(mDirectory / kName) << "left over";
    Start();
    Connect().Write(FrameBytes(1, 7, "first"));
    EXPECT_TRUE(mDelegate.WaitForFrames(1));

    mServer.reset();
    EXPECT_TRUE(std::filesystem::is_socket(mDirectory / kName));
    Start();
    Connect().Write(FrameBytes(1, 7, "second"));
    EXPECT_TRUE(mDelegate.WaitForFrames(2));
}

TEST_F(ServerSocket, HandsOnAOneWayMessageAndSendsNothingBack) {
    Start();
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(1, 7, "event") + FrameBytes(1, -3, "other") + FrameBytes(2, 1, "end")));
    ExpectReply(connection, 1, "end");
    const std::vector<Frame> frames = mDelegate.Frames();
    ASSERT_EQ(3u, frames.size());
    EXPECT_EQ("event", frames[0].payload);
    EXPECT_EQ(7, frames[0].port);
    EXPECT_EQ(1, frames[0].type);
    EXPECT_EQ("other", frames[1].payload);
    EXPECT_EQ(-3, frames[1].port);
}

TEST_F(ServerSocket, SendsTheReplyWithTheRequestsPort) {
    Start();
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(2, 123456, "question")));
    ExpectReply(connection, 123456, "question");
    const std::string large(200000, 'x');
    std::thread writer([&] { EXPECT_TRUE(connection.Write(FrameBytes(2, -1, large))); });
    ExpectReply(connection, -1, large);
    writer.join();
    // Nothing of one message is left in the next.
    ASSERT_TRUE(connection.Write(FrameBytes(2, 8, "s")));
    ExpectReply(connection, 8, "s");
}

TEST_F(ServerSocket, KeepsNothingOfTheLargeMessagesOfIdleConnections) {
    if (kSanitized) return;  // a sanitizer keeps what is freed
    RecordingDelegate silent([](const Frame&) { return "x"; });
    TolmIpcServerSocket server(kKey, &silent);
    server.Start();
    const long before = UsageOfThisProcess().residentKiB;
    std::vector<RawConnection> connections;
    for (int i = 0; i < 8; ++i) {
        connections.push_back(Connect());
        ASSERT_TRUE(connections.back().Write(FrameBytes(0, 7, std::string(15 << 20, 'x')) + FrameBytes(2, 7, "done")));
        ASSERT_TRUE(connections.back().ReadFrame().has_value());
    }
    EXPECT_TRUE(WaitFor([&] { return UsageOfThisProcess().residentKiB < before + (32 << 10); }))
        << ToText(UsageOfThisProcess());
}

TEST_F(ServerSocket, SendsAnEmptyReplyAsSize0AndKeepsTheConnection) {
    RecordingDelegate silent([](const Frame&) { return ""; });
    TolmIpcServerSocket server(kKey, &silent);
    server.Start();
    RawConnection connection = Connect();
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "question")));
        EXPECT_EQ(HeaderBytes(0, 3, 7), connection.Read(12));
    }
}

TEST_F(ServerSocket, ReadsAndDropsMessagesOfUnknownTypes) {
    Start();
    RawConnection connection = Connect();
    for (const int type : {0, 3, 4, 255, -1, 2147483647}) {
        ASSERT_TRUE(connection.Write(FrameBytes(type, 7, std::string(2000, 'x'))));
    }
    ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "still here")));
    ExpectReply(connection, 7, "still here");
    EXPECT_EQ(1u, mDelegate.Count());
}

TEST_F(ServerSocket, ServesTwoPlatformsAtOnceAndAnswersTheOneThatAsked) {
    Start();
    RawConnection first = Connect();
    RawConnection second = Connect();
    ASSERT_TRUE(first.Write(FrameBytes(2, 7, "one")));
    ASSERT_TRUE(second.Write(FrameBytes(2, 7, "two")));
    ExpectReply(second, 7, "two");
    ExpectReply(first, 7, "one");

    std::vector<std::thread> platforms;
    for (int platform = 0; platform < 2; ++platform) {
        platforms.emplace_back([this, platform] {
            RawConnection connection = Connect();
            for (int i = 0; i < 500; ++i) {
                const std::string question = std::to_string(platform) + ":" + std::to_string(i);
                ASSERT_TRUE(connection.Write(FrameBytes(2, platform, question)));
                ASSERT_NO_FATAL_FAILURE(ExpectReply(connection, platform, question));
            }
        });
    }
    for (std::thread& platform : platforms) platform.join();
}

TEST_F(ServerSocket, ServesOneConnectionWhileTheHandlerOfAnotherRuns) {
    std::atomic<bool> release{false};
    RecordingDelegate slow([&release](const Frame& request) {
        if (request.payload == "wait") WaitFor([&release] { return release.load(); });
        return request.payload;
    });
    TolmIpcServerSocket server(kKey, &slow);
    server.Start();
    RawConnection waiting = Connect();
    ASSERT_TRUE(waiting.Write(FrameBytes(2, 7, "wait")));
    ASSERT_TRUE(slow.WaitForFrames(1));
    RawConnection other = Connect();
    ASSERT_TRUE(other.Write(FrameBytes(2, 7, "quick")));
    ExpectReply(other, 7, "quick");
    release = true;
    ExpectReply(waiting, 7, "wait");
}

TEST_F(ServerSocket, Serves18ConnectionsAtOnce) {
    Start();
    std::vector<RawConnection> connections;
    for (int i = 0; i < 18; ++i) connections.push_back(Connect());
    std::vector<std::thread> platforms;
    for (int i = 0; i < 18; ++i) {
        platforms.emplace_back([&connection = connections[static_cast<size_t>(i)], i] {
            for (int n = 0; n < 50; ++n) {
                const std::string question = std::to_string(i) + " asks " + std::to_string(n);
                ASSERT_TRUE(connection.Write(FrameBytes(2, i, question)));
                ASSERT_NO_FATAL_FAILURE(ExpectReply(connection, i, question));
            }
        });
    }
    for (std::thread& platform : platforms) platform.join();
    EXPECT_EQ(18u * 50u, mDelegate.Count());
}

TEST_F(ServerSocket, AcceptsNobodyBeforeItsStart) {
    mServer = std::make_unique<TolmIpcServerSocket>(kKey, &mDelegate);
    RawConnection early = Connect();
    ASSERT_TRUE(early.Write(FrameBytes(2, 7, "early")));
    EXPECT_EQ(0u, mDelegate.Count());
    mServer->Start();
    ExpectReply(early, 7, "early");
}

TEST_F(ServerSocket, ReportsAReplyThatNobodyTakes) {
    std::atomic<bool> gone{false};
    RecordingDelegate late([&gone](const Frame&) {
        WaitFor([&gone] { return gone.load(); });
        return "too late";
    });
    TolmIpcServerSocket server(kKey, &late);
    server.Start();
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "question")));
    ASSERT_TRUE(late.WaitForFrames(1));
    connection.Close();
    gone = true;
    EXPECT_TRUE(mLog.WaitForLine(ANDROID_LOG_WARN, "tolm_IPC", "peer closed!")) << mLog.Text();
}

// An address that cannot be bound: the server can still be started, and its accept calls fail.
TEST_F(ServerSocket, SaysWhyItCannotBeReached) {
    std::filesystem::create_directories(mDirectory / kName + "/inside");
    Start();
    EXPECT_TRUE(mLog.WaitForLine(ANDROID_LOG_ERROR, "tolm_IPC", "accept Error: Invalid argument")) << mLog.Text();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, "tolm_IPC", "server unlink file Error: Is a directory")) << mLog.Text();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Bind Error: Address already in use")) << mLog.Text();
    mServer.reset();
    EXPECT_TRUE(mOut.HasLine("tolm_IPC \"server unlink file Error: Is a directory\""));
    EXPECT_TRUE(mOut.HasLine("tolm_IPC \"Bind Error: Address already in use\""));
    EXPECT_TRUE(mOut.HasLine("tolm_IPC \"accept Error: Invalid argument\""));
}

// Nobody waits for such a server, and it must not fill the log.
TEST_F(ServerSocket, SlowsDownWhenItCannotBeReached) {
    std::filesystem::create_directories(mDirectory / kName + "/inside");
    Start();
    const auto errors = [this] { return mLog.Count(ANDROID_LOG_ERROR, "tolm_IPC", "accept Error: Invalid argument"); };
    ASSERT_TRUE(WaitFor([&] { return errors() >= 100; }));
    const int before = errors();
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(WaitFor([&] { return errors() >= before + 4; }));
    // At least three whole pauses of 100 ms.
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
}

TEST_F(ServerSocket, OfAnUnknownKeyHasNoName) {
    TolmIpcServerSocket server(static_cast<TolmIpcKeyId>(63), &mDelegate);
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Cannot find key_id:63")) << mLog.Text();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, "tolm_IPC", "socket_name:, socket_path:" + mDirectory.Path() + "/"))
        << mLog.Text();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Bind Error: Address already in use")) << mLog.Text();
}

TEST_F(ServerSocket, SaysThatTheDirectoryIsMissing) {
    std::filesystem::remove_all(mDirectory.Path());
    Start();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Bind Error: No such file or directory")) << mLog.Text();
    EXPECT_EQ(0, mLog.Count(ANDROID_LOG_ERROR, "tolm_IPC", "server unlink file Error: No such file or directory"));
}

TEST(ServerSocketFailures, SaysThatTheModeCouldNotBeSet) {
    const ScratchDirectory directory;
    // So long that the path is cut, and the file is not where it is looked for.
    const std::string deep = directory.Path() + "/" + std::string(100 - directory.Path().size() - 1, 'd');
    std::filesystem::create_directory(deep);
    setenv("TMPDIR", deep.c_str(), 1);
    const LogCapture log;
    const StdoutCapture out;
    RecordingDelegate delegate;
    const TolmIpcServerSocket server(kKey, &delegate);
    EXPECT_EQ(1, log.Count(ANDROID_LOG_ERROR, "tolm_IPC", "chmod is negative, Error: No such file or directory"))
        << log.Text();
    EXPECT_TRUE(out.HasLine("tolm_IPC \"chmod is negative, Error: No such file or directory\""));
    EXPECT_TRUE(std::filesystem::is_socket((deep + "/" + kName).substr(0, 107)));
}

}  // namespace

}  // namespace hbbtv::test
