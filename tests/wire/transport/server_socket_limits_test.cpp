// How many connections the servers of a process accept: those of one peer process, and what they leave for the rest of
// the process.
#include <android/log.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ipc/socket/tolm_ipc_server_socket.h"
#include "log_capture.h"
#include "raw_socket.h"
#include "recording_delegate.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

using tolm::TolmIpcServerSocket;

constexpr int kMaxOfPeer = 256;
constexpr int kReserve = 18 + 64;

// Handles an event only when it is opened.
class Gate : public tolm::TolmIpcServerDelegate {
  public:
    void OnRecv(const std::vector<unsigned char>&, int) override {
        std::unique_lock<std::mutex> lock(mMutex);
        mChanged.wait(lock, [this] { return mOpen; });
        ++mHandled;
    }

    void OnRecvSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply, int) override {
        reply = msg;
    }

    void Open() {
        std::lock_guard<std::mutex> lock(mMutex);
        mOpen = true;
        mChanged.notify_all();
    }

    int Handled() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mHandled;
    }

  private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    bool mOpen = false;  // guarded by mMutex
    int mHandled = 0;    // guarded by mMutex
};

class ServerLimits : public testing::Test {
  protected:
    ServerLimits()
        : mVideo(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB, &mGate),
          mSearch(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_SM, &mGate) {
        mVideo.Start();
        mSearch.Start();
    }

    RawConnection ToVideo() const { return RawConnection::To(mDirectory / "service_hbbtv_to_plugin_vb"); }
    RawConnection ToSearch() const { return RawConnection::To(mDirectory / "service_hbbtv_to_plugin_sm"); }

    static bool Served(RawConnection& connection) {
        return connection.Write(FrameBytes(kRequest, 7, "are you there?")) && connection.ReadFrame().has_value();
    }

    int Lines(const std::string& part) const {
        int lines = 0;
        for (const LogLine& line : mLog.Lines()) lines += line.message.find(part) != std::string::npos ? 1 : 0;
        return lines;
    }

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    const LogCapture mLog;
    Gate mGate;
    TolmIpcServerSocket mVideo;
    TolmIpcServerSocket mSearch;
};

TEST_F(ServerLimits, APeerProcessHoldsAtMost256ConnectionsOfAllServers) {
    std::vector<RawConnection> held;
    for (int i = 0; i < kMaxOfPeer; ++i) {
        held.push_back(i % 2 == 0 ? ToVideo() : ToSearch());
        ASSERT_TRUE(Served(held.back())) << i;
    }
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(ToVideo().PeerCloses());
        EXPECT_TRUE(ToSearch().PeerCloses());
    }
    const std::string line = "process " + std::to_string(getpid()) + " holds 256 connections, closing a further one";
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "tolm_IPC", line), 1) << mLog.Text();
    for (RawConnection& connection : held) EXPECT_TRUE(Served(connection));

    held.pop_back();
    RawConnection next = ToVideo();
    EXPECT_TRUE(Served(next));
}

TEST_F(ServerLimits, ClosedConnectionsWhoseEventsAreStillToBeHandledDoNotCount) {
    constexpr int kEvents = 2 * kMaxOfPeer;
    for (int i = 0; i < kEvents; ++i) {
        RawConnection connection = ToVideo();
        ASSERT_TRUE(connection.Write(FrameBytes(kOneWay, 7, "event")));
    }
    RawConnection further = ToVideo();
    EXPECT_TRUE(Served(further));
    EXPECT_EQ(mGate.Handled(), 0);
    mGate.Open();
    EXPECT_TRUE(WaitFor([&] { return mGate.Handled() == kEvents; })) << mGate.Handled();
    EXPECT_EQ(Lines("closing"), 0) << mLog.Text();
}

TEST_F(ServerLimits, AcceptingPausesBeforeTheDescriptorsForTheRestOfTheProcessAreUsed) {
    const int first = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
    ASSERT_GE(first, 0);
    close(first);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = static_cast<rlim_t>(first) + 300;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);

    // Both ends of a connection are in this process.
    std::vector<RawConnection> connections;
    while (Lines("too many descriptors in use, accepting pauses") == 0) {
        connections.push_back(ToVideo());
        ASSERT_TRUE(connections.back().Write(FrameBytes(kRequest, 7, "are you there?")));
        pollfd reply{connections.back().Fd(), POLLIN, 0};
        ASSERT_TRUE(WaitFor([&] { return Lines("accepting pauses") > 0 || poll(&reply, 1, 0) == 1; }));
    }
    EXPECT_GT(connections.size(), 90u);
    RawConnection waiting = ToVideo();
    ASSERT_TRUE(waiting.Write(FrameBytes(kRequest, 7, "waits")));
    EXPECT_FALSE(waiting.ReadFrame(std::chrono::milliseconds(100)).has_value());
    const int next = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
    EXPECT_LE(next + kReserve, static_cast<int>(limit.rlim_cur));
    close(next);

    for (int i = 0; i < 20; ++i) connections.pop_back();
    EXPECT_TRUE(waiting.ReadFrame().has_value());
}

}  // namespace

}  // namespace hbbtv::test
