// Reading a message from a socket, whatever the pieces in which its bytes arrive.
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

// Writes the bytes in pieces, each after the previous one was read.
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
    EXPECT_EQ(received.header.size, 3u);
    EXPECT_EQ(received.header.type, TOLM_IPC_MSG_SYNC);
    EXPECT_EQ(received.header.port, 0x01020304);
    EXPECT_EQ(received.Text(), "abc");
}

TEST(RecvInternalSocket, ReadsAnyTypeAndPort) {
    for (const int type : {0, 1, 2, 3, 4, 255, -1, 2147483647}) {
        SocketPair pair;
        ASSERT_TRUE(pair.far.Write(FrameBytes(type, -7, "x")));
        const Received received = ReceiveFrom(pair.near.Fd());
        EXPECT_TRUE(received.whole);
        EXPECT_EQ(type, static_cast<int>(received.header.type));
        EXPECT_EQ(received.header.port, -7);
        EXPECT_EQ(received.Text(), "x");
    }
}

TEST(RecvInternalSocket, ReadsAMessageInPiecesOfEverySizeThatMatters) {
    const std::string payload = Pattern(3000);
    for (const size_t size : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 1023, 1024, 1025}) {
        const Received received = ReceiveInPieces(FrameBytes(1, 7, payload), [size] { return size; });
        EXPECT_TRUE(received.whole) << size;
        EXPECT_TRUE(received.alive) << size;
        EXPECT_EQ(received.header.port, 7) << size;
        EXPECT_EQ(received.Text(), payload) << size;
    }
}

TEST(RecvInternalSocket, ReadsAMessageInPiecesOfRandomSizes) {
    std::mt19937 random(5);
    for (int round = 0; round < 50; ++round) {
        const std::string payload = Pattern(1 + random() % 5000);
        const Received received = ReceiveInPieces(FrameBytes(2, round, payload), [&] { return 1 + random() % 700; });
        EXPECT_TRUE(received.whole);
        EXPECT_EQ(round, received.header.port);
        EXPECT_EQ(received.Text(), payload);
    }
}

TEST(RecvInternalSocket, ReadsAHeaderThatIsCutAnywhere) {
    for (size_t cut = 1; cut < 12; ++cut) {
        bool first = true;
        const Received received = ReceiveInPieces(FrameBytes(2, 0x01020304, "abc"),
                                                  [&] { return std::exchange(first, false) ? cut : size_t{100}; });
        EXPECT_TRUE(received.whole) << cut;
        EXPECT_EQ(received.header.size, 3u) << cut;
        EXPECT_EQ(received.header.port, 0x01020304) << cut;
        EXPECT_EQ(received.Text(), "abc") << cut;
    }
}

TEST(RecvInternalSocket, DoesNotReadTheNextMessage) {
    SocketPair pair;
    ASSERT_TRUE(pair.far.Write(FrameBytes(1, 7, "first") + FrameBytes(2, 8, "second")));
    EXPECT_EQ(ReceiveFrom(pair.near.Fd()).Text(), "first");
    const Received second = ReceiveFrom(pair.near.Fd());
    EXPECT_EQ(second.Text(), "second");
    EXPECT_EQ(second.header.port, 8);
}

TEST(RecvInternalSocket, AppendsToThePayload) {
    SocketPair pair;
    ASSERT_TRUE(pair.far.Write(FrameBytes(1, 7, "first") + FrameBytes(1, 7, Pattern(2000))));
    TolmIpcSocketMsgHeader header{};
    std::vector<unsigned char> payload;
    bool alive = true;
    EXPECT_TRUE(RecvInternalSocket(pair.near.Fd(), header, payload, alive));
    EXPECT_TRUE(RecvInternalSocket(pair.near.Fd(), header, payload, alive));
    EXPECT_EQ(std::string(payload.begin(), payload.end()), "first" + Pattern(2000));
}

TEST(RecvInternalSocket, TreatsSize0AsAClosedPeer) {
    const LogCapture log;
    const StdoutCapture out;
    SocketPair pair;
    ASSERT_TRUE(pair.far.Write(HeaderBytes(0, 3, 7)));
    const Received received = ReceiveFrom(pair.near.Fd());
    EXPECT_FALSE(received.whole);
    EXPECT_FALSE(received.alive);
    EXPECT_TRUE(received.payload.empty());
    EXPECT_EQ(received.header.type, 3);
    ASSERT_EQ(log.Lines().size(), 1u) << log.Text();
    EXPECT_EQ(log.Count(ANDROID_LOG_WARN, "tolm_IPC", "peer closed!"), 1) << log.Text();
    EXPECT_EQ(out.Text(), "tolm_IPC \"peer closed!\"\n");
}

TEST(RecvInternalSocket, ReportsAPeerThatClosesAfterAnyByteOfTheMessage) {
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
        ASSERT_EQ(log.Lines().size(), 1u) << log.Text();
        ASSERT_EQ(log.Count(ANDROID_LOG_WARN, "tolm_IPC", "peer closed!"), 1) << log.Text();
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
    EXPECT_EQ(log.Lines().size(), 0u) << log.Text();
}

TEST(RecvInternalSocket, ReportsAnErrorInTheHeaderWithAFullWidthColon) {
    const LogCapture log;
    const StdoutCapture out;
    const Received received = ReceiveFrom(-1);
    EXPECT_FALSE(received.whole);
    EXPECT_TRUE(received.alive);
    ASSERT_EQ(log.Lines().size(), 1u) << log.Text();
    EXPECT_EQ(log.Count(ANDROID_LOG_WARN, "tolm_IPC", "Recv Error\xEF\xBC\x9A:Bad file descriptor"), 1) << log.Text();
    EXPECT_EQ(log.Lines()[0].file, "tolm_ipc_internal_socket.cpp");
    EXPECT_EQ(out.Text(), "tolm_IPC \"Recv Error\xEF\xBC\x9A:Bad file descriptor\"\n");
}

// A non-blocking socket fails where the bytes end.
TEST(RecvInternalSocket, LeavesTheHeaderUnchangedIfItEndsInAnError) {
    for (size_t cut = 0; cut < 12; ++cut) {
        const LogCapture log;
        const StdoutCapture out;
        SocketPair pair(SOCK_STREAM | SOCK_NONBLOCK);
        ASSERT_TRUE(pair.far.Write(FrameBytes(1, 7, "abc").substr(0, cut)));
        const Received received = ReceiveFrom(pair.near.Fd());
        EXPECT_FALSE(received.whole);
        EXPECT_TRUE(received.alive);
        EXPECT_EQ(received.header.size, 0u) << cut;
        EXPECT_EQ(received.header.type, 0) << cut;
        EXPECT_EQ(received.header.port, 0) << cut;
        EXPECT_EQ(log.Count(ANDROID_LOG_WARN, "tolm_IPC", "Recv Error\xEF\xBC\x9A:Resource temporarily unavailable"), 1)
            << log.Text();
    }
}

TEST(RecvInternalSocket, ReportsAnErrorInThePayloadAndKeepsThePartThatArrived) {
    const LogCapture log;
    const StdoutCapture out;
    SocketPair pair(SOCK_STREAM | SOCK_NONBLOCK);
    ASSERT_TRUE(pair.far.Write(FrameBytes(1, 7, "abcdef").substr(0, 12 + 3)));
    const Received received = ReceiveFrom(pair.near.Fd());
    EXPECT_FALSE(received.whole);
    EXPECT_TRUE(received.alive);
    EXPECT_EQ(received.header.type, TOLM_IPC_MSG_ASYNC);
    EXPECT_EQ(received.Text(), "abc");
    ASSERT_EQ(log.Lines().size(), 1u) << log.Text();
    EXPECT_EQ(log.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Recv Error: Resource temporarily unavailable"), 1)
        << log.Text();
    EXPECT_EQ(out.Text(), "tolm_IPC \"Recv Error: Resource temporarily unavailable\"\n");
}

TEST(RecvInternalSocket, ContinuesAfterASignal) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, nullptr), 0);  // without SA_RESTART
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
    EXPECT_EQ(received.Text(), payload);
}

TEST(SocketAddress, TruncatesAPathTo107Characters) {
    EXPECT_EQ(tolm::SocketAddress(std::string(300, 'x')).sun_path, std::string(107, 'x'));
    EXPECT_EQ(tolm::SocketAddress(std::string(106, 'x')).sun_path, std::string(106, 'x'));
    EXPECT_EQ(tolm::SocketAddress("/tmp/x").sun_family, AF_UNIX);
    EXPECT_EQ(sizeof(tolm::SocketAddress("/tmp/x")), 110u);
}

}  // namespace

}  // namespace hbbtv::test
