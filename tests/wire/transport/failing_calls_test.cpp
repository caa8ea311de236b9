// What clients and servers do when the system refuses it something. This program has its own pthread_create(),
// socket(), listen() and accept4(), which fail when a test says so; a name that a program defines itself goes before
// the C library's.
#include <android/log.h>
#include <dlfcn.h>
#include <pthread.h>
#include <sys/socket.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "ipc/socket/tolm_ipc_client_socket.h"
#include "ipc/socket/tolm_ipc_server_socket.h"
#include "log_capture.h"
#include "process_usage.h"
#include "raw_socket.h"
#include "recording_delegate.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace {

// Calls that are still to fail.
std::atomic<int> gThreadFailures{0};
std::atomic<int> gSocketFailures{0};
std::atomic<int> gListenFailures{0};
std::atomic<int> gAcceptFailures{0};

bool Fails(std::atomic<int>& failures) {
    int left = failures;
    while (left > 0 && !failures.compare_exchange_weak(left, left - 1)) {
    }
    return left > 0;
}

template <typename Function>
Function Next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                              void* argument) noexcept {
    if (Fails(gThreadFailures)) return EAGAIN;
    static const auto next = Next<decltype(&pthread_create)>("pthread_create");
    return next(thread, attributes, body, argument);
}

extern "C" int socket(int domain, int type, int protocol) noexcept {
    if (Fails(gSocketFailures)) {
        errno = EMFILE;
        return -1;
    }
    static const auto next = Next<decltype(&socket)>("socket");
    return next(domain, type, protocol);
}

extern "C" int listen(int fd, int backlog) noexcept {
    if (Fails(gListenFailures)) {
        errno = EADDRINUSE;
        return -1;
    }
    static const auto next = Next<decltype(&listen)>("listen");
    return next(fd, backlog);
}

extern "C" int accept4(int fd, sockaddr* address, socklen_t* length, int flags) {
    if (Fails(gAcceptFailures)) {
        errno = EMFILE;
        return -1;
    }
    static const auto next = Next<decltype(&accept4)>("accept4");
    return next(fd, address, length, flags);
}

namespace hbbtv::test {

namespace {

using tolm::TolmIpcServerSocket;

constexpr TolmIpcKeyId kKey = TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB;
constexpr char kTag[] = "tolm_IPC";

class FailingCalls : public testing::Test {
  protected:
    void Start() {
        mServer = std::make_unique<TolmIpcServerSocket>(kKey, &mDelegate);
        mServer->Start();
    }

    RawConnection Connect() const { return RawConnection::To(mDirectory / "service_hbbtv_to_plugin_vb"); }

    static void ExpectServed(RawConnection& connection) {
        ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "are you there?")));
        const std::optional<Frame> reply = connection.ReadFrame();
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ("are you there?", reply->payload);
    }

    int AcceptErrors() const { return mLog.Count(ANDROID_LOG_ERROR, kTag, "accept Error: Too many open files"); }

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    const LogCapture mLog;
    RecordingDelegate mDelegate;
    std::unique_ptr<TolmIpcServerSocket> mServer;
};

TEST_F(FailingCalls, AConnectionWhoseThreadCannotBeStartedIsClosed) {
    Start();
    RawConnection before = Connect();
    ExpectServed(before);
    const int descriptors = UsageOfThisProcess().descriptors;
    for (int round = 1; round <= 3; ++round) {
        gThreadFailures = 1;
        RawConnection refused = Connect();
        EXPECT_TRUE(refused.PeerCloses());
        EXPECT_EQ(round, mLog.Count(ANDROID_LOG_ERROR, kTag, "thread error")) << mLog.Text();
        ExpectServed(before);
    }
    EXPECT_EQ(descriptors, UsageOfThisProcess().descriptors);
    EXPECT_TRUE(mOut.HasLine("tolm_IPC \"thread error\""));
    RawConnection after = Connect();
    ExpectServed(after);
}

TEST_F(FailingCalls, AServerWhoseThreadCannotBeStartedSaysSoAndEnds) {
    gThreadFailures = 1;
    Start();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, kTag, "thread error")) << mLog.Text();
    mServer.reset();
    Start();
    RawConnection connection = Connect();
    ExpectServed(connection);
}

TEST_F(FailingCalls, AServerWithoutASocketSaysSoAndEnds) {
    gSocketFailures = 1;
    Start();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, kTag, "server socket fd is negative, Error: Too many open files"))
        << mLog.Text();
    EXPECT_TRUE(mLog.WaitForLine(ANDROID_LOG_ERROR, kTag, "accept Error: Bad file descriptor")) << mLog.Text();
    mServer.reset();
    EXPECT_TRUE(mOut.HasLine("tolm_IPC \"server socket fd is negative, Error: Too many open files\""));
}

TEST_F(FailingCalls, AClientWithoutASocketSaysSoAndTriesAgainWithItsNextMessage) {
    gSocketFailures = 2;
    tolm::TolmIpcClientSocket client(TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB, 7);
    EXPECT_FALSE(client.Send({'x'}));
    EXPECT_EQ(2, mLog.Count(ANDROID_LOG_ERROR, kTag, "client socket fd is negative error: Too many open files"))
        << mLog.Text();
    EXPECT_EQ(1,
              mLog.Count(ANDROID_LOG_ERROR, kTag,
                         "Connect error:Bad file descriptor server_path:" + mDirectory / "service_plugin_to_hbbtv_vb"))
        << mLog.Text();
    EXPECT_TRUE(mOut.HasLine("tolm_IPC \"client socket fd is negative error: Too many open files\""));
    const FakePlatform platform("service_plugin_to_hbbtv_vb", "{}");
    EXPECT_TRUE(client.Send({'x'}));
    EXPECT_TRUE(platform.WaitForFrames(1));
}

TEST_F(FailingCalls, AServerThatCannotListenSaysSoAndEnds) {
    gListenFailures = 1;
    Start();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, kTag, "Listen Error: Address already in use")) << mLog.Text();
    EXPECT_TRUE(mLog.WaitForLine(ANDROID_LOG_ERROR, kTag, "accept Error: Invalid argument")) << mLog.Text();
    mServer.reset();
    EXPECT_TRUE(mOut.HasLine("tolm_IPC \"Listen Error: Address already in use\""));
}

TEST_F(FailingCalls, AcceptingGoesOnAtOnceAfterAFailure) {
    gAcceptFailures = 50;
    Start();
    RawConnection connection = Connect();
    ExpectServed(connection);
    EXPECT_EQ(50, AcceptErrors());
    EXPECT_TRUE(mOut.HasLine("tolm_IPC \"accept Error: Too many open files\""));
}

TEST_F(FailingCalls, AcceptingIsSlowedDownByALongRunOfFailuresButGoesOn) {
    gAcceptFailures = 105;
    const auto begin = std::chrono::steady_clock::now();
    Start();
    RawConnection connection = Connect();
    ExpectServed(connection);
    // The hundredth failure and each that follows it are paused after.
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(600));
    EXPECT_EQ(105, AcceptErrors());
}

TEST_F(FailingCalls, AServerWhoseAcceptingFailsForEverEnds) {
    gAcceptFailures = 1 << 30;
    Start();
    ASSERT_TRUE(WaitFor([this] { return AcceptErrors() >= 100; }));
    mServer.reset();
    gAcceptFailures = 0;
}

}  // namespace

}  // namespace hbbtv::test
