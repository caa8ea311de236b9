// The client socket used by many threads: frames never mix, and one thread's waiting holds up no other.
#include <android/log.h>

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "build_kind.h"
#include "ipc/socket/tolm_ipc_client_socket.h"
#include "log_capture.h"
#include "raw_listener.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

using tolm::TolmIpcClientSocket;

constexpr TolmIpcKeyId kKey = TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB;
constexpr char kName[] = "service_plugin_to_hbbtv_vb";
constexpr int kSenders = 6;
// Fewer under a sanitizer, where each takes ten times as long.
constexpr int kMessages = kSanitized ? 100 : 1000;

std::vector<unsigned char> Bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

// A sender's n-th message: its letter, the number, and its letter again up to a size that differs from message to
// message.
std::string Message(char sender, int number) {
    std::string text = sender + std::to_string(number) + " ";
    text.append(static_cast<size_t>(number) * 37 % 5000, sender);
    return text;
}

// The number of a message, or -1 when it is not one that was sent.
int NumberOf(const Frame& frame) {
    if (frame.payload.empty()) return -1;
    const int number = std::atoi(frame.payload.c_str() + 1);
    return frame.payload == Message(frame.payload[0], number) ? number : -1;
}

TEST(ClientSocketThreads, SendOneWayWhileAnotherWaitsForAReply) {
    const ScratchDirectory directory;
    RawListener listener(directory / kName);
    const StdoutCapture out;
    TolmIpcClientSocket client(kKey, 7);
    std::vector<unsigned char> reply;
    std::thread asking([&] { EXPECT_TRUE(client.SendSync(Bytes("request"), reply)); });
    RawConnection platform = listener.Accept();
    const std::optional<Frame> request = platform.ReadFrame();
    ASSERT_TRUE(request.has_value());
    EXPECT_EQ(2, request->type);

    // The reply goes out only when a hundred one-way messages have come.
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(client.Send(Bytes(Message('a', i))));
        const std::optional<Frame> frame = platform.ReadFrame();
        ASSERT_TRUE(frame.has_value());
        EXPECT_EQ(1, frame->type);
        EXPECT_EQ(Message('a', i), frame->payload);
    }
    ASSERT_TRUE(platform.Write(FrameBytes(3, 7, "reply")));
    asking.join();
    EXPECT_EQ("reply", std::string(reply.begin(), reply.end()));
}

TEST(ClientSocketThreads, NeverMixTheBytesOfTwoFrames) {
    const ScratchDirectory directory;
    const FakePlatform platform(kName, [](const Frame& request) { return request.payload; });
    const StdoutCapture out;
    TolmIpcClientSocket client(kKey, 7);
    std::vector<std::thread> threads;
    for (int sender = 0; sender < kSenders; ++sender) {
        threads.emplace_back([&client, sender] {
            for (int i = 0; i < kMessages; ++i) {
                ASSERT_TRUE(client.Send(Bytes(Message(static_cast<char>('a' + sender), i))));
            }
        });
    }
    for (int i = 0; i < kMessages; ++i) {
        std::vector<unsigned char> reply;
        ASSERT_TRUE(client.SendSync(Bytes(Message('R', i)), reply));
        ASSERT_EQ(Bytes(Message('R', i)), reply);
    }
    for (std::thread& thread : threads) thread.join();
    ASSERT_TRUE(platform.WaitForFrames((kSenders + 1) * kMessages));

    std::map<char, int> next;
    for (const Frame& frame : platform.Frames()) {
        const int number = NumberOf(frame);
        ASSERT_NE(-1, number) << frame.payload.substr(0, 100);
        ASSERT_EQ(frame.payload[0] == 'R' ? 2 : 1, frame.type);
        ASSERT_EQ(7, frame.port);
        ASSERT_EQ(next[frame.payload[0]]++, number);
    }
    EXPECT_EQ(1, platform.Connections());
}

TEST(ClientSocketThreads, NeverReconnectTheSameClientAtOnce) {
    const ScratchDirectory directory;
    const StdoutCapture out;
    const LogCapture log;
    TolmIpcClientSocket client(kKey, 7);
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int sender = 0; sender < kSenders; ++sender) {
        threads.emplace_back([&, sender] {
            for (int i = 0; !stop; ++i) client.Send(Bytes(Message(static_cast<char>('a' + sender), i)));
        });
    }
    threads.emplace_back([&] {
        std::vector<unsigned char> reply;
        while (!stop) {
            reply.clear();
            if (!client.SendSync(Bytes(Message('R', 1)), reply)) continue;
            EXPECT_EQ(Bytes(Message('R', 1)), reply);
        }
    });
    int connections = 0;
    for (int round = 0; round < 10; ++round) {
        FakePlatform platform(kName, [](const Frame& request) { return request.payload; });
        // Frames of a connection that is lost are cut, and the fake platform forgets those: no other may be wrong.
        EXPECT_TRUE(platform.WaitForFrames(100));
        for (const Frame& frame : platform.Frames()) ASSERT_NE(-1, NumberOf(frame)) << frame.payload.substr(0, 100);
        connections += platform.Connections();
    }
    stop = true;
    for (std::thread& thread : threads) thread.join();
    // One thread has lost the connection, all notice: still one new connection each time.
    EXPECT_EQ(10, connections);
}

}  // namespace

}  // namespace hbbtv::test
