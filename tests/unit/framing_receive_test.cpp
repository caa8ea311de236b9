// How a message is read from a socket, however its bytes come.
#include <android/log.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "ipc/socket/tolm_ipc_internal_socket.h"
#include "log_capture.h"
#include "socket_pair.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

using tolm::RecvInternalSocket;
using tolm::TolmIpcSocketMsgHeader;

struct Received {
    bool whole = false;
    bool alive = true;
    TolmIpcSocketMsgHeader header{};
    std::vector<unsigned char> payload;

    std::string Text() const { return std::string(payload.begin(), payload.end()); }
};

Received ReceiveFrom(int fd) {
    Received received;
    received.whole = RecvInternalSocket(fd, received.header, received.payload, received.alive);
    return received;
}

std::string Pattern(size_t size) {
    std::string text(size, '\0');
    for (size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 11 + i / 256);
    return text;
}

// Writes the bytes in pieces, each only after the one before it was read.
Received ReceiveInPieces(const std::string& bytes, const std::function<size_t()>& nextSize) {
    SocketPair pair;
    Received received;
    std::thread receiver([&] { received = ReceiveFrom(pair.near.Fd()); });
    for (size_t at = 0; at < bytes.size();) {
        const std::string piece = bytes.substr(at, nextSize());
        EXPECT_TRUE(pair.far.Write(piece));
        at += piece.size();
        if (at < bytes.size()) WaitUntilRead(pair.near.Fd());
    }
    receiver.join();
    return received;
}

TEST(RecvInternalSocket, ReadsHeaderAndPayload) {
    SocketPair pair;
    ASSERT_TRUE(
        pair.far.Write(std::string("\x03\0\0\0\x02\0\0\0\x04\x03\x02\x01"
                                   "abc",
                                   15)));
    const Received received = ReceiveFrom(pair.near.Fd());
    EXPECT_TRUE(received.whole);
    EXPECT_TRUE(received.alive);
    EXPECT_EQ(3u, received.header.size);
    EXPECT_EQ(TOLM_IPC_MSG_SYNC, received.header.type);
    EXPECT_EQ(0x01020304, received.header.port);
    EXPECT_EQ("abc", received.Text());
}

TEST(RecvInternalSocket, ReadsAnyTypeAndPort) {
    for (const int type : {0, 1, 2, 3, 4, 255, -1, 2147483647}) {
        SocketPair pair;
        ASSERT_TRUE(pair.far.Write(FrameBytes(type, -7, "x")));
        const Received received = ReceiveFrom(pair.near.Fd());
        EXPECT_TRUE(received.whole);
        EXPECT_EQ(type, static_cast<int>(received.header.type));
        EXPECT_EQ(-7, received.header.port);
        EXPECT_EQ("x", received.Text());
    }
}

TEST(RecvInternalSocket, ReadsAMessageInPiecesOfEverySizeThatMatters) {
    const std::string payload = Pattern(3000);
    for (const size_t size : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 1023, 1024, 1025}) {
        const Received received = ReceiveInPieces(FrameBytes(1, 7, payload), [size] { return size; });
        EXPECT_TRUE(received.whole) << size;
        EXPECT_TRUE(received.alive) << size;
        EXPECT_EQ(7, received.header.port) << size;
        EXPECT_EQ(payload, received.Text()) << size;
    }
}

TEST(RecvInternalSocket, ReadsAMessageInPiecesOfRandomSizes) {
    std::mt19937 random(5);
    for (int round = 0; round < 50; ++round) {
        const std::string payload = Pattern(1 + random() % 5000);
        const Received received = ReceiveInPieces(FrameBytes(2, round, payload), [&] { return 1 + random() % 700; });
        EXPECT_TRUE(received.whole);
        EXPECT_EQ(round, received.header.port);
        EXPECT_EQ(payload, received.Text());
    }
}

TEST(RecvInternalSocket, ReadsAHeaderThatIsCutAnywhere) {
    for (size_t cut = 1; cut < 12; ++cut) {
        bool first = true;
        const Received received = ReceiveInPieces(FrameBytes(2, 0x01020304, "abc"),
                                                  [&] { return std::exchange(first, false) ? cut : size_t{100}; });
        EXPECT_TRUE(received.whole) << cut;
        EXPECT_EQ(3u, received.header.size) << cut;
        EXPECT_EQ(0x01020304, received.header.port) << cut;
        EXPECT_EQ("abc", received.Text()) << cut;
    }
}

TEST(RecvInternalSocket, LeavesTheNextMessageWhereItIs) {
    SocketPair pair;
    ASSERT_TRUE(pair.far.Write(FrameBytes(1, 7, "first") + FrameBytes(2, 8, "second")));
    EXPECT_EQ("first", ReceiveFrom(pair.near.Fd()).Text());
    const Received second = ReceiveFrom(pair.near.Fd());
    EXPECT_EQ("second", second.Text());
    EXPECT_EQ(8, second.header.port);
}

TEST(RecvInternalSocket, AppendsToThePayload) {
    SocketPair pair;
    ASSERT_TRUE(pair.far.Write(FrameBytes(1, 7, "first") + FrameBytes(1, 7, Pattern(2000))));
    TolmIpcSocketMsgHeader header{};
    std::vector<unsigned char> payload;
    bool alive = true;
    EXPECT_TRUE(RecvInternalSocket(pair.near.Fd(), header, payload, alive));
    EXPECT_TRUE(RecvInternalSocket(pair.near.Fd(), header, payload, alive));
    EXPECT_EQ("first" + Pattern(2000), std::string(payload.begin(), payload.end()));
}

TEST(RecvInternalSocket, TakesSize0ForAClosedPeer) {
    const LogCapture log;
    const StdoutCapture out;
    SocketPair pair;
    ASSERT_TRUE(pair.far.Write(HeaderBytes(0, 3, 7)));
    const Received received = ReceiveFrom(pair.near.Fd());
    EXPECT_FALSE(received.whole);
    EXPECT_FALSE(received.alive);
    EXPECT_TRUE(received.payload.empty());
    EXPECT_EQ(3, received.header.type);
    ASSERT_EQ(1u, log.Lines().size()) << log.Text();
    EXPECT_EQ(1, log.Count(ANDROID_LOG_WARN, "tolm_IPC", "peer closed!")) << log.Text();
    EXPECT_EQ("tolm_IPC \"peer closed!\"\n", out.Text());
}

TEST(RecvInternalSocket, ReportsAPeerThatGoesAfterEachByteOfTheMessage) {
    const std::string payload = Pattern(1030);
    const std::string bytes = FrameBytes(1, 7, payload);
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        const LogCapture log;
        const StdoutCapture out;
        SocketPair pair;
        ASSERT_TRUE(pair.far.Write(bytes.substr(0, cut)));
        pair.far.Close();
        const Received received = ReceiveFrom(pair.near.Fd());
        ASSERT_FALSE(received.whole) << cut;
        ASSERT_FALSE(received.alive) << cut;
        ASSERT_EQ(cut > 12 ? payload.substr(0, cut - 12) : "", received.Text()) << cut;
        ASSERT_EQ(1u, log.Lines().size()) << log.Text();
        ASSERT_EQ(1, log.Count(ANDROID_LOG_WARN, "tolm_IPC", "peer closed!")) << log.Text();
    }
}

TEST(RecvInternalSocket, NeverSetsAliveToTrueAndLogsNothingOnSuccess) {
    const LogCapture log;
    SocketPair pair;
    ASSERT_TRUE(pair.far.Write(FrameBytes(1, 7, "abc")));
    Received received;
    received.alive = false;
    EXPECT_TRUE(RecvInternalSocket(pair.near.Fd(), received.header, received.payload, received.alive));
    EXPECT_FALSE(received.alive);
    EXPECT_EQ(0u, log.Lines().size()) << log.Text();
}

TEST(RecvInternalSocket, ReportsAnErrorInTheHeaderWithAFullWidthColon) {
    const LogCapture log;
    const StdoutCapture out;
    const Received received = ReceiveFrom(-1);
    EXPECT_FALSE(received.whole);
    EXPECT_TRUE(received.alive);
    ASSERT_EQ(1u, log.Lines().size()) << log.Text();
    EXPECT_EQ(1, log.Count(ANDROID_LOG_WARN, "tolm_IPC", "Recv Error\xEF\xBC\x9A:Bad file descriptor")) << log.Text();
    EXPECT_EQ("tolm_ipc_internal_socket.cpp", log.Lines()[0].file);
    EXPECT_EQ("tolm_IPC \"Recv Error\xEF\xBC\x9A:Bad file descriptor\"\n", out.Text());
}

// A socket that does not wait fails where the bytes end.
TEST(RecvInternalSocket, GivesNoPartOfAHeaderThatEndsInAnError) {
    for (size_t cut = 0; cut < 12; ++cut) {
        const LogCapture log;
        const StdoutCapture out;
        SocketPair pair(SOCK_STREAM | SOCK_NONBLOCK);
        ASSERT_TRUE(pair.far.Write(FrameBytes(1, 7, "abc").substr(0, cut)));
        const Received received = ReceiveFrom(pair.near.Fd());
        EXPECT_FALSE(received.whole);
        EXPECT_TRUE(received.alive);
        EXPECT_EQ(0u, received.header.size) << cut;
        EXPECT_EQ(0, received.header.type) << cut;
        EXPECT_EQ(0, received.header.port) << cut;
        EXPECT_EQ(1, log.Count(ANDROID_LOG_WARN, "tolm_IPC", "Recv Error\xEF\xBC\x9A:Resource temporarily unavailable"))
            << log.Text();
    }
}

TEST(RecvInternalSocket, ReportsAnErrorInThePayloadAndKeepsWhatCame) {
    const LogCapture log;
    const StdoutCapture out;
    SocketPair pair(SOCK_STREAM | SOCK_NONBLOCK);
    ASSERT_TRUE(pair.far.Write(FrameBytes(1, 7, "abcdef").substr(0, 12 + 3)));
    const Received received = ReceiveFrom(pair.near.Fd());
    EXPECT_FALSE(received.whole);
    EXPECT_TRUE(received.alive);
    EXPECT_EQ(TOLM_IPC_MSG_ASYNC, received.header.type);
    EXPECT_EQ("abc", received.Text());
    ASSERT_EQ(1u, log.Lines().size()) << log.Text();
    EXPECT_EQ(1, log.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Recv Error: Resource temporarily unavailable"))
        << log.Text();
    EXPECT_EQ("tolm_IPC \"Recv Error: Resource temporarily unavailable\"\n", out.Text());
}

TEST(RecvInternalSocket, GoesOnAfterASignal) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(0, sigaction(SIGUSR1, &action, nullptr));  // without SA_RESTART
    const std::string payload = Pattern(300);
    SocketPair pair;
    Received received;
    std::atomic<bool> done{false};
    std::thread receiver([&] {
        received = ReceiveFrom(pair.near.Fd());
        done = true;
    });
    for (const char byte : FrameBytes(1, 7, payload)) {
        for (int i = 0; i < 3 && !done; ++i) pthread_kill(receiver.native_handle(), SIGUSR1);
        ASSERT_TRUE(pair.far.Write(std::string(1, byte)));
        WaitUntilRead(pair.near.Fd());
    }
    receiver.join();
    EXPECT_TRUE(received.whole);
    EXPECT_TRUE(received.alive);
    EXPECT_EQ(payload, received.Text());
}

TEST(SocketAddress, CutsAPathAt107Characters) {
    EXPECT_EQ(std::string(107, 'x'), tolm::SocketAddress(std::string(300, 'x')).sun_path);
    EXPECT_EQ(std::string(106, 'x'), tolm::SocketAddress(std::string(106, 'x')).sun_path);
    EXPECT_EQ(AF_UNIX, tolm::SocketAddress("/tmp/x").sun_family);
    EXPECT_EQ(110u, sizeof(tolm::SocketAddress("/tmp/x")));
}

}  // namespace

}  // namespace hbbtv::test
