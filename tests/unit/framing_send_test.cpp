// Writing a message to a socket.
#include <android/log.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "ipc/socket/tolm_ipc_internal_socket.h"
#include "log_capture.h"
#include "socket_pair.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

using tolm::SendInternalSocket;

std::vector<unsigned char> Bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

std::string Pattern(size_t size) {
    std::string text(size, '\0');
    for (size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 7 + i / 256);
    return text;
}

std::vector<size_t> SizesOfWrites(size_t payload) {
    SocketPair pair(SOCK_SEQPACKET);
    bool alive = true;
    EXPECT_TRUE(SendInternalSocket(pair.near.Fd(), 7, TOLM_IPC_MSG_ASYNC, Bytes(Pattern(payload)), alive));
    std::vector<size_t> sizes;
    char buffer[8192];
    ssize_t n;
    while ((n = recv(pair.far.Fd(), buffer, sizeof(buffer), MSG_DONTWAIT)) > 0) sizes.push_back(static_cast<size_t>(n));
    return sizes;
}

TEST(SendInternalSocket, WritesAHeaderOfThreeLittleEndianNumbersAndThePayload) {
    SocketPair pair;
    bool alive = true;
    ASSERT_TRUE(SendInternalSocket(pair.near.Fd(), 0x01020304, TOLM_IPC_MSG_SYNC, Bytes("abc"), alive));
    pair.near.Close();
    EXPECT_EQ(pair.far.Read(100), std::string("\x03\0\0\0\x02\0\0\0\x04\x03\x02\x01"
                                              "abc",
                                              15));
}

TEST(SendInternalSocket, WritesANegativePortAndAnEmptyPayload) {
    SocketPair pair;
    bool alive = true;
    ASSERT_TRUE(SendInternalSocket(pair.near.Fd(), -2, TOLM_IPC_MSG_REPLY, {}, alive));
    pair.near.Close();
    EXPECT_EQ(pair.far.Read(100), std::string("\0\0\0\0\x03\0\0\0\xfe\xff\xff\xff", 12));
    EXPECT_TRUE(alive);
}

TEST(SendInternalSocket, WritesChunksOfAtMost1024BytesOverHeaderAndPayload) {
    EXPECT_EQ(SizesOfWrites(3000), (std::vector<size_t>{1024, 1024, 964}));
    EXPECT_EQ(SizesOfWrites(0), (std::vector<size_t>{12}));
    EXPECT_EQ(SizesOfWrites(1), (std::vector<size_t>{13}));
    EXPECT_EQ(SizesOfWrites(1011), (std::vector<size_t>{1023}));
    EXPECT_EQ(SizesOfWrites(1012), (std::vector<size_t>{1024}));
    EXPECT_EQ(SizesOfWrites(1013), (std::vector<size_t>{1024, 1}));
    EXPECT_EQ(SizesOfWrites(2036), (std::vector<size_t>{1024, 1024}));
}

TEST(SendInternalSocket, KeepsThePayloadOfEverySizeAroundAChunk) {
    for (const size_t size : {1, 11, 12, 13, 1011, 1012, 1013, 1023, 1024, 1025, 2035, 2036, 2037, 100000}) {
        SocketPair pair;
        bool alive = true;
        std::thread sender([&] {
            EXPECT_TRUE(SendInternalSocket(pair.near.Fd(), 7, TOLM_IPC_MSG_ASYNC, Bytes(Pattern(size)), alive));
        });
        const auto frame = pair.far.ReadFrame();
        sender.join();
        ASSERT_TRUE(frame.has_value()) << size;
        EXPECT_EQ(Pattern(size), frame->payload) << size;
        EXPECT_EQ(frame->port, 7);
        EXPECT_EQ(frame->type, 1);
    }
}

TEST(SendInternalSocket, ReportsAClosedPeerWithoutASignal) {
    const LogCapture log;
    const StdoutCapture out;
    struct sigaction action {};
    ASSERT_EQ(sigaction(SIGPIPE, nullptr, &action), 0);
    ASSERT_EQ(action.sa_handler, SIG_DFL);  // a SIGPIPE would end this process
    SocketPair pair;
    pair.far.Close();
    bool alive = true;
    EXPECT_FALSE(SendInternalSocket(pair.near.Fd(), 7, TOLM_IPC_MSG_ASYNC, Bytes("abc"), alive));
    EXPECT_FALSE(alive);
    ASSERT_EQ(log.Lines().size(), 1u) << log.Text();
    const LogLine line = log.Lines()[0];
    EXPECT_EQ(line.priority, ANDROID_LOG_WARN);
    EXPECT_EQ(line.tag, "tolm_IPC");
    EXPECT_EQ(line.file, "tolm_ipc_internal_socket.cpp");
    EXPECT_GT(line.line, 0);
    EXPECT_EQ(line.message, "peer closed!");
    EXPECT_EQ(out.Text(), "tolm_IPC \"peer closed!\"\n");
}

TEST(SendInternalSocket, ReportsAPeerThatClosesDuringALargeWrite) {
    const LogCapture log;
    const StdoutCapture out;
    SocketPair pair;
    bool alive = true;
    bool sent = true;
    std::thread sender(
        [&] { sent = SendInternalSocket(pair.near.Fd(), 7, TOLM_IPC_MSG_ASYNC, Bytes(Pattern(8 << 20)), alive); });
    EXPECT_EQ(pair.far.Read(5000).size(), 5000u);
    pair.far.Close();
    sender.join();
    EXPECT_FALSE(sent);
    // Closing with unread bytes is reported as a reset or as a broken pipe.
    if (alive) {
        EXPECT_EQ(log.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Send Error: Connection reset by peer"), 1) << log.Text();
    } else {
        EXPECT_EQ(log.Count(ANDROID_LOG_WARN, "tolm_IPC", "peer closed!"), 1) << log.Text();
    }
}

TEST(SendInternalSocket, ReportsAnyOtherErrorAndLeavesAliveUnchanged) {
    for (const bool before : {true, false}) {
        const LogCapture log;
        const StdoutCapture out;
        bool alive = before;
        EXPECT_FALSE(SendInternalSocket(-1, 7, TOLM_IPC_MSG_ASYNC, Bytes("abc"), alive));
        EXPECT_EQ(alive, before);
        ASSERT_EQ(log.Lines().size(), 1u) << log.Text();
        EXPECT_EQ(log.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Send Error: Bad file descriptor"), 1) << log.Text();
        EXPECT_EQ(log.Lines()[0].function, "SendInternalSocket");
        EXPECT_EQ(out.Text(), "tolm_IPC \"Send Error: Bad file descriptor\"\n");
    }
}

TEST(SendInternalSocket, NeverSetsAliveToTrueAndLogsNothingOnSuccess) {
    const LogCapture log;
    SocketPair pair;
    bool alive = false;
    EXPECT_TRUE(SendInternalSocket(pair.near.Fd(), 7, TOLM_IPC_MSG_ASYNC, Bytes("abc"), alive));
    EXPECT_FALSE(alive);
    EXPECT_EQ(log.Lines().size(), 0u) << log.Text();
}

TEST(SendInternalSocket, ContinuesAfterASignal) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, nullptr), 0);  // without SA_RESTART
    SocketPair pair;
    const std::string payload = Pattern(4 << 20);
    std::atomic<bool> done{false};
    bool sent = false;
    std::thread sender([&] {
        bool alive = true;
        sent = SendInternalSocket(pair.near.Fd(), 7, TOLM_IPC_MSG_ASYNC, Bytes(payload), alive);
        done = true;
    });
    std::string received;
    while (received.size() < payload.size() + 12) {
        for (int i = 0; i < 10 && !done; ++i) pthread_kill(sender.native_handle(), SIGUSR1);
        const std::string piece = pair.far.Read(std::min<size_t>(65536, payload.size() + 12 - received.size()));
        ASSERT_FALSE(piece.empty());
        received += piece;
    }
    sender.join();
    EXPECT_TRUE(sent);
    EXPECT_EQ(received.substr(12), payload);
}

}  // namespace

}  // namespace hbbtv::test
