// The client socket against a platform played by hand: connecting, losing the connection, connecting again.
#include <android/log.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "ipc/socket/tolm_ipc_client_socket.h"
#include "log_capture.h"
#include "process_usage.h"
#include "raw_listener.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

using tolm::TolmIpcClientSocket;

constexpr TolmIpcKeyId kKey = TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB;
constexpr char kName[] = "service_plugin_to_hbbtv_vb";
constexpr char kOwnName[] = "service_plugin_to_hbbtv_vb_port_7";

std::vector<unsigned char> Bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

class ClientSocket : public testing::Test {
  protected:
    bool Send(const std::string& text) { return mClient->Send(Bytes(text)); }

    bool Ask(const std::string& text) {
        std::vector<unsigned char> reply;
        const bool answered = mClient->SendSync(Bytes(text), reply);
        mReply.assign(reply.begin(), reply.end());
        return answered;
    }

    // Messages of all lines that were written, errors as "E ..." and warnings as "W ...".
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (const LogLine& line : mLog.Lines()) {
            EXPECT_EQ("tolm_IPC", line.tag);
            EXPECT_TRUE(mOut.HasLine("tolm_IPC \"" + line.message + "\"")) << line.message;
            lines.push_back((line.priority == ANDROID_LOG_ERROR ? "E " : "W ") + line.message);
        }
        return lines;
    }

    using Texts = std::vector<std::string>;

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    LogCapture mLog;
    std::unique_ptr<TolmIpcClientSocket> mClient = std::make_unique<TolmIpcClientSocket>(kKey, 7);
    std::string mReply;
};

TEST_F(ClientSocket, BindsItsOwnFileForEverybodyAndDoesNotConnect) {
    struct stat status {};
    ASSERT_EQ(0, stat((mDirectory / kOwnName).c_str(), &status));
    EXPECT_TRUE(S_ISSOCK(status.st_mode));
    EXPECT_EQ(0777u, status.st_mode & 07777);
    const FakePlatform platform(kName, "{}");
    EXPECT_EQ(0, platform.Connections());
    EXPECT_EQ(Texts{}, Lines());
}

TEST_F(ClientSocket, ReplacesAnOldFileAtItsOwnPath) {
    mClient.reset();
    EXPECT_TRUE(std::filesystem::exists(mDirectory / kOwnName));
    std::filesystem::remove(mDirectory / kOwnName);
    std::ofstream(mDirectory / kOwnName) << "left over";
    mClient = std::make_unique<TolmIpcClientSocket>(kKey, 7);
    EXPECT_TRUE(std::filesystem::is_socket(mDirectory / kOwnName));
    EXPECT_EQ(Texts{}, Lines());
}

TEST_F(ClientSocket, IsKnownToThePlatformByItsOwnFile) {
    RawListener listener(mDirectory / kName);
    ASSERT_TRUE(Send("hello"));
    const RawConnection connection = listener.Accept();
    sockaddr_un peer{};
    socklen_t length = sizeof(peer);
    ASSERT_EQ(0, getpeername(connection.Fd(), reinterpret_cast<sockaddr*>(&peer), &length));
    EXPECT_EQ(mDirectory / kOwnName, peer.sun_path);
}

TEST_F(ClientSocket, ConnectsWithItsFirstMessageAndSaysSoOnce) {
    const FakePlatform platform(kName, "{}");
    ASSERT_TRUE(Send("hello"));
    ASSERT_TRUE(Send("again"));
    ASSERT_TRUE(platform.WaitForFrames(2));
    const std::vector<Frame> frames = platform.Frames();
    EXPECT_EQ(1, frames[0].type);
    EXPECT_EQ(7, frames[0].port);
    EXPECT_EQ("hello", frames[0].payload);
    EXPECT_EQ("again", frames[1].payload);
    EXPECT_EQ(1, platform.Connections());
    EXPECT_EQ(Texts{"W Reconnect to server ..."}, Lines());
    EXPECT_EQ("ReconnectIfNeeded", mLog.Lines()[0].function);
    EXPECT_EQ("tolm_ipc_client_socket.cpp", mLog.Lines()[0].file);
}

TEST_F(ClientSocket, TriesOnceWithEachMessageWhenThereIsNoServer) {
    const std::string error =
        "E Connect error:No such file or directory server_path:" + mDirectory / "service_plugin_to_hbbtv_vb";
    EXPECT_FALSE(Send("lost"));
    EXPECT_EQ((Texts{"W Reconnect to server ...", error}), Lines());
    EXPECT_FALSE(Ask("lost too"));
    EXPECT_EQ((Texts{"W Reconnect to server ...", error, "W Reconnect to server ...", error}), Lines());

    const FakePlatform platform(kName, "{}");
    EXPECT_TRUE(Send("arrives"));
    ASSERT_TRUE(platform.WaitForFrames(1));
    EXPECT_EQ("arrives", platform.Frames()[0].payload);
}

TEST_F(ClientSocket, IsRefusedByAFileThatNobodyListensOn) {
    { const TolmIpcClientSocket other(TOLM_IPC_KEY_MAS, 1); }  // leaves a bound file
    std::filesystem::rename(mDirectory / "mas_port_1", mDirectory / kName);
    EXPECT_FALSE(Send("lost"));
    EXPECT_EQ(
        (Texts{"W Reconnect to server ...", "E Connect error:Connection refused server_path:" + mDirectory / kName}),
        Lines());
}

TEST_F(ClientSocket, GivesTheReplyToARequest) {
    FakePlatform platform(kName, [](const Frame& request) { return request.payload + "!"; });
    ASSERT_TRUE(Ask("one"));
    EXPECT_EQ("one!", mReply);
    ASSERT_TRUE(Ask(std::string(100000, 'x')));
    EXPECT_EQ(std::string(100000, 'x') + "!", mReply);
    EXPECT_EQ(2, platform.Frames()[0].type);
    EXPECT_EQ(7, platform.Frames()[0].port);
    EXPECT_EQ(1, platform.Connections());
}

TEST_F(ClientSocket, TakesWhateverComesNextForTheReply) {
    RawListener listener(mDirectory / kName);
    std::thread platform([&] {
        RawConnection connection = listener.Accept();
        for (const int type : {1, 2, 3, 77}) {
            EXPECT_TRUE(connection.ReadFrame().has_value());
            EXPECT_TRUE(connection.Write(FrameBytes(type, 1000 + type, "reply " + std::to_string(type))));
        }
    });
    for (const int type : {1, 2, 3, 77}) {
        EXPECT_TRUE(Ask("request"));
        EXPECT_EQ("reply " + std::to_string(type), mReply);
    }
    platform.join();
}

TEST_F(ClientSocket, TakesAReplyOfSize0ForAClosedConnectionAndConnectsAgain) {
    FakePlatform platform(kName, "");
    EXPECT_FALSE(Ask("one"));
    EXPECT_EQ((Texts{"W Reconnect to server ...", "W peer closed!"}), Lines());
    platform.SetReply("{}");
    EXPECT_TRUE(Ask("two"));
    EXPECT_EQ("{}", mReply);
    EXPECT_EQ((Texts{"W Reconnect to server ...", "W peer closed!", "W Reconnect to server ..."}), Lines());
    EXPECT_EQ(2, platform.Connections());
}

TEST_F(ClientSocket, ReportsAPlatformThatGoesAfterEachByteOfTheReply) {
    RawListener listener(mDirectory / kName);
    const std::string reply = FrameBytes(3, 7, "0123456789");
    for (size_t cut = 0; cut < reply.size(); ++cut) {
        mLog.Clear();
        std::thread platform([&] {
            RawConnection connection = listener.Accept();
            EXPECT_TRUE(connection.ReadFrame().has_value());
            EXPECT_TRUE(connection.Write(reply.substr(0, cut)));
        });
        EXPECT_FALSE(Ask("request")) << cut;
        platform.join();
        EXPECT_EQ((Texts{"W Reconnect to server ...", "W peer closed!"}), Lines()) << cut;
    }
}

TEST_F(ClientSocket, ConnectsAgainWhenThePlatformWentAndCameBack) {
    auto platform = std::make_unique<FakePlatform>(kName, "{}");
    ASSERT_TRUE(Send("one"));
    ASSERT_TRUE(platform->WaitForFrames(1));
    platform.reset();
    mLog.Clear();
    EXPECT_FALSE(Send("lost"));
    EXPECT_EQ(Texts{"W peer closed!"}, Lines());

    platform = std::make_unique<FakePlatform>(kName, "{}");
    mLog.Clear();
    EXPECT_TRUE(Send("two"));
    EXPECT_EQ(Texts{"W Reconnect to server ..."}, Lines());
    ASSERT_TRUE(platform->WaitForFrames(1));
    EXPECT_EQ("two", platform->Frames()[0].payload);
}

TEST_F(ClientSocket, ReportsAPlatformThatGoesWhileARequestWaits) {
    RawListener listener(mDirectory / kName);
    std::thread platform([&] {
        RawConnection connection = listener.Accept();
        EXPECT_TRUE(connection.ReadFrame().has_value());
    });
    EXPECT_FALSE(Ask("request"));
    platform.join();
    EXPECT_EQ((Texts{"W Reconnect to server ...", "W peer closed!"}), Lines());
}

TEST_F(ClientSocket, SendsNoEmptyMessageButConnectsForIt) {
    const FakePlatform platform(kName, "{}");
    EXPECT_FALSE(Send(""));
    EXPECT_EQ((Texts{"W Reconnect to server ...", "E Msg is empty"}), Lines());
    EXPECT_FALSE(Ask(""));
    EXPECT_EQ((Texts{"W Reconnect to server ...", "E Msg is empty", "E Msg is empty"}), Lines());
    EXPECT_TRUE(Send("x"));
    ASSERT_TRUE(platform.WaitForFrames(1));
    EXPECT_EQ(1u, platform.Frames().size());
}

TEST_F(ClientSocket, TriesNoEmptyMessageWithoutAServer) {
    EXPECT_FALSE(Send(""));
    EXPECT_EQ((Texts{"W Reconnect to server ...",
                     "E Connect error:No such file or directory server_path:" + mDirectory / kName}),
              Lines());
}

TEST_F(ClientSocket, ClosesItsDescriptors) {
    const FakePlatform platform(kName, "{}");
    mClient.reset();
    const int before = UsageOfThisProcess().descriptors;
    for (int i = 0; i < 50; ++i) {
        TolmIpcClientSocket connected(kKey, 7);
        std::vector<unsigned char> reply;
        ASSERT_TRUE(connected.SendSync(Bytes("x"), reply));
        const TolmIpcClientSocket unconnected(TOLM_IPC_KEY_MAS, 1);
    }
    // The platform's ends go when its threads have seen the close.
    EXPECT_TRUE(WaitFor([&] { return UsageOfThisProcess().descriptors == before; }));
}

TEST(ClientSocketFailures, LogsThatItCannotBindAndConnectsAnyway) {
    const ScratchDirectory directory;
    std::filesystem::create_directories(directory / kOwnName + "/inside");
    const LogCapture log;
    const StdoutCapture out;
    TolmIpcClientSocket client(kKey, 7);
    ASSERT_EQ(2u, log.Lines().size()) << log.Text();
    EXPECT_EQ(1, log.Count(ANDROID_LOG_ERROR, "tolm_IPC", "client unlink error: Is a directory")) << log.Text();
    EXPECT_EQ(1, log.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Bind error")) << log.Text();
    EXPECT_TRUE(out.HasLine("tolm_IPC \"client unlink error: Is a directory\""));
    EXPECT_TRUE(out.HasLine("tolm_IPC \"Bind error\""));
    const FakePlatform platform(kName, "{}");
    EXPECT_TRUE(client.Send(Bytes("x")));
}

TEST(ClientSocketFailures, SaysThatTheModeCouldNotBeSet) {
    const ScratchDirectory directory;
    // So long that the client's own path is cut, and its file is not where it is looked for; the server's path fits.
    const std::string deep = directory.Path() + "/" + std::string(78 - directory.Path().size() - 1, 'd');
    std::filesystem::create_directory(deep);
    setenv("TMPDIR", deep.c_str(), 1);
    const LogCapture log;
    const StdoutCapture out;
    TolmIpcClientSocket client(kKey, 7);
    ASSERT_EQ(1u, log.Lines().size()) << log.Text();
    EXPECT_EQ(1, log.Count(ANDROID_LOG_ERROR, "tolm_IPC", "chmod is negative, Error: No such file or directory"))
        << log.Text();
    EXPECT_TRUE(out.HasLine("tolm_IPC \"chmod is negative, Error: No such file or directory\""));
    const FakePlatform platform(kName, "{}");
    std::filesystem::remove((deep + "/" + kOwnName).substr(0, 107));
    EXPECT_TRUE(client.Send(Bytes("x")));
}

}  // namespace

}  // namespace hbbtv::test
