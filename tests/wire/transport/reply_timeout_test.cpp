// TOLM_REPLY_TIMEOUT_MS: an exchange with a platform that is late ends in time, and what comes late is lost.
#include <android/log.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <list>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "build_kind.h"
#include "ipc/socket/tolm_ipc_client_socket.h"
#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "ipc/src/tolm_base_client.h"
#include "ipc/tolm_reply_timeout.h"
#include "log_capture.h"
#include "raw_listener.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr TolmIpcKeyId kKey = TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB;
constexpr char kName[] = "service_plugin_to_hbbtv_vb";
constexpr char kVariable[] = "TOLM_REPLY_TIMEOUT_MS";

struct Client : TolmBaseClient {
    Client() : TolmBaseClient(kKey, 7) {}
};

std::vector<unsigned char> Bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

Json::Value Request(int number) {
    Json::Value request(Json::objectValue);
    request["number"] = number;
    return request;
}

int NumberOf(const std::string& request) {
    return std::atoi(request.c_str() + request.find(':') + 1);
}

std::string ReplyTo(const std::string& request) {
    return FrameBytes(kReply, 7, "{\"ret\": " + std::to_string(NumberOf(request)) + "}");
}

class ReplyTimeout : public testing::Test {
  protected:
    // Before the library reads it.
    static void Set(const char* text) { setenv(kVariable, text, 1); }

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    LogCapture mLog;
};

TEST_F(ReplyTimeout, IsNoneWhenItIsAbsentOr0) {
    unsetenv(kVariable);
    EXPECT_EQ(tolm::ReplyTimeout(), milliseconds(0));
    EXPECT_TRUE(mLog.Lines().empty()) << mLog.Text();
}

TEST_F(ReplyTimeout, IsReadOnce) {
    Set("0");
    EXPECT_EQ(tolm::ReplyTimeout(), milliseconds(0));
    Set("100");
    EXPECT_EQ(tolm::ReplyTimeout(), milliseconds(0));
    EXPECT_TRUE(mLog.Lines().empty()) << mLog.Text();
}

TEST_F(ReplyTimeout, IsANumberOfMilliseconds) {
    Set("1234");
    EXPECT_EQ(tolm::ReplyTimeout(), milliseconds(1234));
    EXPECT_TRUE(mLog.Lines().empty()) << mLog.Text();
}

class BadReplyTimeout : public ReplyTimeout, public testing::WithParamInterface<const char*> {};

TEST_P(BadReplyTimeout, IsIgnoredAndLogged) {
    Set(GetParam());
    EXPECT_EQ(tolm::ReplyTimeout(), milliseconds(0));
    EXPECT_EQ(mLog.Count(ANDROID_LOG_ERROR, "[ipc_base]",
                         "TOLM_REPLY_TIMEOUT_MS is not a number from 0 to 86400000; replies are awaited for ever"),
              1)
        << mLog.Text();
}

INSTANTIATE_TEST_SUITE_P(Values, BadReplyTimeout,
                         testing::Values("", "5s", "-1", "+5", " 5", "five", "0x10", "1.5", "86400001",
                                         "99999999999999999999"));

TEST_F(ReplyTimeout, BoundsTheWaitForAReplyAndTheConnectionIsClosed) {
    Set("200");
    RawListener listener(mDirectory / kName);
    Client client;
    const auto begin = Clock::now();
    std::thread asking([&] { EXPECT_EQ(client.SendIpc(Request(1)), -1); });
    RawConnection platform = listener.Accept();
    ASSERT_TRUE(platform.ReadFrame().has_value());
    EXPECT_TRUE(platform.PeerCloses());
    asking.join();
    EXPECT_GE(Clock::now() - begin, milliseconds(200));
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "SendIpc failed 0 1 1"), 1) << mLog.Text();
}

TEST_F(ReplyTimeout, IsLoggedOnceWithFamilyCodeAndTime) {
    Set("100");
    FakePlatform platform(kName, [](const Frame&) { return std::nullopt; });
    auto* const adaptor = TolmVideoBroadcastAdaptorIpc::GetInstance();
    EXPECT_EQ(adaptor->NextChannel(reinterpret_cast<void*>(0x1000)), -1);
    const std::string message =
        "no reply to request 13 of service_plugin_to_hbbtv_vb within 100 ms, the connection is closed";
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_vb]", message), 1) << mLog.Text();
    platform.SetReply("{\"ret\": 0}");
    EXPECT_EQ(adaptor->NextChannel(reinterpret_cast<void*>(0x1000)), 0);
    platform.SetReply("no JSON");
    EXPECT_EQ(adaptor->NextChannel(reinterpret_cast<void*>(0x1000)), -1);
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_vb]", message), 1) << mLog.Text();
    EXPECT_EQ(platform.Connections(), 2);
}

TEST_F(ReplyTimeout, PassesInEachByteOfAReplyAndTheRestIsNoReplyToTheNextRequest) {
    Set("150");
    RawListener listener(mDirectory / kName);
    Client client;
    std::unique_ptr<RawConnection> connection;
    const size_t size = ReplyTo("1:100").size();
    for (size_t cut = 0; cut < size; ++cut) {
        std::thread asking([&] { EXPECT_EQ(client.SendIpc(Request(100)), -1) << cut; });
        if (connection == nullptr) connection = std::make_unique<RawConnection>(listener.Accept());
        const std::optional<Frame> request = connection->ReadFrame();
        ASSERT_TRUE(request.has_value());
        const std::string reply = ReplyTo(request->payload);
        ASSERT_TRUE(connection->Write(reply.substr(0, cut)));
        asking.join();
        connection->Write(reply.substr(cut));  // late

        std::thread next([&] { EXPECT_EQ(client.SendIpc(Request(7)), 7) << cut; });
        connection = std::make_unique<RawConnection>(listener.Accept());
        const std::optional<Frame> nextRequest = connection->ReadFrame();
        ASSERT_TRUE(nextRequest.has_value());
        ASSERT_TRUE(connection->Write(ReplyTo(nextRequest->payload)));
        next.join();
    }
}

// A platform that never stops sending, byte by byte, before the limit for one read is over.
TEST_F(ReplyTimeout, BoundsAReplyThatNeverEnds) {
    Set("300");
    RawListener listener(mDirectory / kName);
    Client client;
    const auto begin = Clock::now();
    std::thread asking([&] { EXPECT_EQ(client.SendIpc(Request(1)), -1); });
    RawConnection platform = listener.Accept();
    ASSERT_TRUE(platform.Write(HeaderBytes(1 << 20, kReply, 7)));
    int bytes = 0;
    EXPECT_TRUE(WaitFor([&] { return ++bytes > 200000 || !platform.Write("x"); }));
    EXPECT_LE(bytes, 200000);
    asking.join();
    EXPECT_LT(Clock::now() - begin, kPatience);
}

// Replies in time, late in any part, and just at the end of the time.
class UnpunctualPlatform {
  public:
    explicit UnpunctualPlatform(const std::string& path, milliseconds timeout)
        : mListener(path), mTimeout(timeout), mThread([this] { Accept(); }) {}

    ~UnpunctualPlatform() {
        mStop = true;
        { const RawConnection wake = RawConnection::To(std::string(getenv("TMPDIR")) + "/" + kName); }
        mThread.join();
        for (std::thread& thread : mServing) thread.join();
    }

  private:
    void Accept() {
        for (unsigned seed = 1;; ++seed) {
            auto connection = std::make_shared<RawConnection>(mListener.Accept());
            if (mStop) return;
            mServing.emplace_back([this, connection, seed] { Serve(*connection, seed); });
        }
    }

    void Serve(RawConnection& connection, unsigned seed) {
        std::mt19937 random(seed);
        while (const std::optional<Frame> request = connection.ReadFrame()) {
            const std::string reply = ReplyTo(request->payload);
            const bool late = random() % 20 == 0;
            const size_t cut = late ? random() % reply.size() : 0;
            if (!connection.Write(reply.substr(0, cut))) return;
            // From half the time to one and a half.
            const auto pause = late ? mTimeout / 2 + std::chrono::microseconds(random() % (1000 * mTimeout.count()))
                                    : std::chrono::microseconds(0);
            std::this_thread::sleep_for(pause);
            if (!connection.Write(reply.substr(cut))) return;
        }
    }

    std::atomic<bool> mStop{false};
    RawListener mListener;
    const milliseconds mTimeout;
    std::list<std::thread> mServing;  // of mThread, until it has ended
    std::thread mThread;
};

TEST_F(ReplyTimeout, MixesNoRepliesUpInTenThousandExchanges) {
    constexpr int kExchanges = 10000;
    constexpr int kThreads = 2;
    Set("20");
    UnpunctualPlatform platform(mDirectory / kName, milliseconds(20));
    Client client;
    std::atomic<int> answered{0};
    std::atomic<int> late{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = thread; i < kExchanges; i += kThreads) {
                const int status = client.SendIpc(Request(i));
                ++(status == -1 ? late : answered);
                if (status == -1) continue;
                ASSERT_EQ(status, i);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(answered + late, kExchanges);
    EXPECT_GT(answered, kExchanges / 10);
    EXPECT_GT(late, 50);
}

TEST_F(ReplyTimeout, BoundsWritingToAPlatformThatDoesNotRead) {
    Set("300");
    RawListener listener(mDirectory / kName);
    tolm::TolmIpcClientSocket client(kKey, 7);
    const std::string large(4 << 20, 'x');
    const auto begin = Clock::now();
    std::vector<std::thread> writers;
    for (int i = 0; i < 4; ++i) writers.emplace_back([&] { EXPECT_FALSE(client.Send(Bytes(large))); });
    std::vector<unsigned char> reply;
    EXPECT_FALSE(client.SendSync(Bytes(large), reply));
    for (std::thread& writer : writers) writer.join();
    EXPECT_GE(Clock::now() - begin, milliseconds(300));
    EXPECT_LT(Clock::now() - begin, kPatience);
    // Nothing follows the part of a message: the platform's end is closed.
    RawConnection platform = listener.Accept();
    EXPECT_LT(platform.Read(large.size() + 1).size(), large.size());
    EXPECT_TRUE(platform.PeerCloses());
}

TEST_F(ReplyTimeout, BoundsConnectingToAPlatformThatDoesNotAccept) {
    Set("200");
    RawListener listener(mDirectory / kName);
    std::list<tolm::TolmIpcClientSocket> clients;
    const auto begin = Clock::now();
    bool refused = false;
    for (int port = 0; port < 200 && !refused; ++port) {
        refused = !clients.emplace_back(kKey, port).Send(Bytes("x"));
    }
    EXPECT_TRUE(refused);
    EXPECT_GE(Clock::now() - begin, milliseconds(200));
    EXPECT_LT(Clock::now() - begin, kPatience);
    EXPECT_EQ(mLog.Count(ANDROID_LOG_ERROR, "tolm_IPC",
                         "Connect error:Connection timed out server_path:" + mDirectory / kName),
              1)
        << mLog.Text();
}

TEST_F(ReplyTimeout, OfZeroWaitsForALateReply) {
    Set("0");
    RawListener listener(mDirectory / kName);
    Client client;
    std::atomic<bool> done{false};
    std::thread asking([&] {
        EXPECT_EQ(client.SendIpc(Request(3)), 3);
        done = true;
    });
    RawConnection platform = listener.Accept();
    const std::optional<Frame> request = platform.ReadFrame();
    ASSERT_TRUE(request.has_value());
    EXPECT_FALSE(WaitFor([&] { return done.load(); }, milliseconds(300)));
    ASSERT_TRUE(platform.Write(ReplyTo(request->payload)));
    asking.join();
}

}  // namespace

}  // namespace hbbtv::test
