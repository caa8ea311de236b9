// What happens to a message for which there is no memory. Plain builds limit the process's address space; under a
// sanitizer, which needs that for itself, its options limit the size of one allocation (sanitizer_options.cpp).
#include <android/log.h>
#include <malloc.h>
#include <sys/resource.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "build_kind.h"
#include "ipc/socket/tolm_ipc_internal_socket.h"
#include "ipc/socket/tolm_ipc_server_socket.h"
#include "log_capture.h"
#include "process_usage.h"
#include "raw_socket.h"
#include "recording_delegate.h"
#include "scratch_directory.h"
#include "socket_pair.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

using tolm::TolmIpcServerSocket;

constexpr char kTag[] = "tolm_IPC";

// Before the first thread starts: an arena of its own would hold memory in reserve that the limit does not cover.
const bool kOneArena = mallopt(M_ARENA_MAX, 1) == 1;

// No allocation of more than 24 MiB succeeds while it exists; smaller ones, and one more thread, do.
class MemoryLimit {
  public:
    MemoryLimit() {
        getrlimit(RLIMIT_AS, &mBefore);
        if (kSanitized) return;
        EXPECT_TRUE(kOneArena);
        rlimit limit = mBefore;
        limit.rlim_cur = static_cast<rlim_t>(UsageOfThisProcess().addressSpaceKiB) * 1024 + (24u << 20);
        EXPECT_EQ(0, setrlimit(RLIMIT_AS, &limit));
    }
    ~MemoryLimit() { setrlimit(RLIMIT_AS, &mBefore); }
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

  private:
    rlimit mBefore{};
};

// With what is kept free, more than the limit.
constexpr uint32_t kTooMuch = 16u << 20;

TEST(MemoryLimit, ClosesAConnectionThatAnnouncesTooMuchAndNoOther) {
    const ScratchDirectory directory;
    const StdoutCapture out;
    const LogCapture log;
    RecordingDelegate delegate;
    TolmIpcServerSocket server(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB, &delegate);
    server.Start();
    const std::string path = directory / "service_hbbtv_to_plugin_vb";
    RawConnection bystander = RawConnection::To(path);
    // Its thread has its stack before the rest is limited.
    ASSERT_TRUE(bystander.Write(FrameBytes(2, 7, "hello")));
    ASSERT_TRUE(bystander.ReadFrame().has_value());
    const MemoryLimit limit;
    int errors = 0;
    for (const int type : {1, 2, 3}) {
        RawConnection peer = RawConnection::To(path);
        ASSERT_TRUE(peer.Write(HeaderBytes(kTooMuch, type, 7)));
        EXPECT_TRUE(peer.PeerCloses());
        EXPECT_EQ(log.Count(ANDROID_LOG_ERROR, kTag, "malloc error"), ++errors) << log.Text();
        ASSERT_TRUE(bystander.Write(FrameBytes(2, 7, "hello")));
        const std::optional<Frame> reply = bystander.ReadFrame();
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->payload, "hello");
    }
    EXPECT_TRUE(out.HasLine("tolm_IPC \"malloc error\""));
    for (const Frame& frame : delegate.Frames()) EXPECT_EQ("hello", frame.payload);
}

// Each of them could be stored alone, both together not.
TEST(MemoryLimit, LivesWhenManyConnectionsAnnounceMuchAtOnce) {
    const ScratchDirectory directory;
    const StdoutCapture out;
    const LogCapture log;
    RecordingDelegate delegate;
    TolmIpcServerSocket server(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB, &delegate);
    server.Start();
    const std::string path = directory / "service_hbbtv_to_plugin_vb";
    RawConnection bystander = RawConnection::To(path);
    // Its thread has its stack before the rest is limited.
    ASSERT_TRUE(bystander.Write(FrameBytes(2, 7, "hello")));
    ASSERT_TRUE(bystander.ReadFrame().has_value());
    const MemoryLimit limit;
    for (int round = 0; round < (kSanitized ? 5 : 20); ++round) {
        std::vector<RawConnection> peers;
        for (int i = 0; i < 2; ++i) peers.push_back(RawConnection::To(path));
        for (RawConnection& peer : peers) peer.Write(HeaderBytes(10u << 20, 1, 7));
        ASSERT_TRUE(bystander.Write(FrameBytes(2, 7, "hello")));
        ASSERT_TRUE(bystander.ReadFrame().has_value());
    }
}

TEST(MemoryLimit, StoresNoReplyThatIsTooLargeAndTakesThePlatformForGone) {
    const StdoutCapture out;
    const LogCapture log;
    const MemoryLimit limit;
    SocketPair pair;
    ASSERT_TRUE(pair.far.Write(HeaderBytes(kTooMuch, 3, 7)));
    tolm::TolmIpcSocketMsgHeader header{};
    std::vector<unsigned char> payload;
    bool alive = true;
    EXPECT_FALSE(tolm::RecvInternalSocket(pair.near.Fd(), header, payload, alive));
    EXPECT_FALSE(alive);
    EXPECT_EQ(1, log.Count(ANDROID_LOG_ERROR, kTag, "malloc error")) << log.Text();
}

TEST(MemoryLimit, SendsNoMessageThatCannotBePutTogether) {
    const StdoutCapture out;
    const LogCapture log;
    // Takes most of what is allowed; a second block of the size does not fit.
    std::vector<unsigned char> payload(kSanitized ? 24u << 20 : 64u << 20);
    const MemoryLimit limit;
    SocketPair pair;
    bool alive = true;
    EXPECT_FALSE(tolm::SendInternalSocket(pair.near.Fd(), 7, TOLM_IPC_MSG_ASYNC, payload, alive));
    EXPECT_TRUE(alive);
    EXPECT_EQ(1, log.Count(ANDROID_LOG_ERROR, kTag, "malloc error")) << log.Text();
    EXPECT_TRUE(out.HasLine("tolm_IPC \"malloc error\""));
    pair.near.Close();
    EXPECT_EQ("", pair.far.Read(1));
}

}  // namespace

}  // namespace hbbtv::test
