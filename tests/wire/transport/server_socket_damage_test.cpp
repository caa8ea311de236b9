// What a peer may do to its own connection, and that the server's other connections notice nothing.
#include <android/log.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <random>
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

constexpr TolmIpcKeyId kKey = TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB;

class DamagedConnection : public testing::Test {
  protected:
    DamagedConnection() { mServer.Start(); }

    RawConnection Connect() const { return RawConnection::To(mDirectory / "service_hbbtv_to_plugin_vb"); }

    // A round trip on a connection.
    static void ExpectServed(RawConnection& connection) {
        ASSERT_TRUE(connection.Write(FrameBytes(2, 99, "are you there?")));
        const std::optional<Frame> reply = connection.ReadFrame();
        ASSERT_TRUE(reply.has_value());
        ASSERT_EQ("are you there?", reply->payload);
    }

    // A round trip on the connection that was there before.
    void ExpectOthersNoticeNothing() { ASSERT_NO_FATAL_FAILURE(ExpectServed(mBystander)); }

    // One-way messages so far.
    std::vector<std::string> Events() const {
        std::vector<std::string> events;
        for (const Frame& frame : mDelegate.Frames()) {
            if (frame.type == 1) events.push_back(frame.payload);
        }
        return events;
    }

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    const LogCapture mLog;
    RecordingDelegate mDelegate;
    TolmIpcServerSocket mServer{kKey, &mDelegate};
    RawConnection mBystander = Connect();
};

TEST_F(DamagedConnection, GoneAtEachByteOfAMessageDeliversNothing) {
    const std::string bytes = FrameBytes(1, 7, std::string(30, 'x'));
    int ended = 0;
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        RawConnection peer = Connect();
        ASSERT_TRUE(peer.Write(bytes.substr(0, cut)));
        peer.Close();
        ++ended;
        ASSERT_TRUE(WaitFor([&] { return mLog.Count(ANDROID_LOG_WARN, "tolm_IPC", "peer closed!") == ended; }))
            << cut << "\n"
            << mLog.Text();
        ASSERT_NO_FATAL_FAILURE(ExpectOthersNoticeNothing());
    }
    EXPECT_TRUE(Events().empty());
}

TEST_F(DamagedConnection, GoneAtEachByteOfASecondMessageDeliversTheFirst) {
    const std::string bytes = FrameBytes(2, 7, "lost");
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        RawConnection peer = Connect();
        ASSERT_TRUE(peer.Write(FrameBytes(1, 7, "first " + std::to_string(cut)) + bytes.substr(0, cut)));
        peer.Close();
        ASSERT_TRUE(WaitFor([&] { return Events().size() == cut + 1; }));
        ASSERT_EQ("first " + std::to_string(cut), Events().back());
        ASSERT_NO_FATAL_FAILURE(ExpectOthersNoticeNothing());
    }
}

TEST_F(DamagedConnection, InPiecesOfEverySizeIsServed) {
    RawConnection peer = Connect();
    const std::string payload(2500, 'p');
    for (const size_t size : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 1023, 1024, 1025}) {
        const std::string bytes = FrameBytes(2, static_cast<int>(size), payload);
        for (size_t at = 0; at < bytes.size(); at += size) ASSERT_TRUE(peer.Write(bytes.substr(at, size)));
        const std::optional<Frame> reply = peer.ReadFrame();
        ASSERT_TRUE(reply.has_value());
        ASSERT_EQ(payload, reply->payload);
        ASSERT_EQ(static_cast<int>(size), reply->port);
        ASSERT_NO_FATAL_FAILURE(ExpectOthersNoticeNothing());
    }
}

TEST_F(DamagedConnection, InRandomPiecesIsServed) {
    std::mt19937 random(6);
    RawConnection peer = Connect();
    for (int round = 0; round < 50; ++round) {
        const std::string payload(1 + random() % 3000, static_cast<char>('a' + round % 26));
        const std::string bytes = FrameBytes(2, round, payload);
        for (size_t at = 0; at < bytes.size();) {
            const std::string piece = bytes.substr(at, 1 + random() % 300);
            ASSERT_TRUE(peer.Write(piece));
            at += piece.size();
        }
        const std::optional<Frame> reply = peer.ReadFrame();
        ASSERT_TRUE(reply.has_value());
        ASSERT_EQ(payload, reply->payload);
    }
    ExpectOthersNoticeNothing();
}

TEST_F(DamagedConnection, IsClosedByAMessageOfSize0) {
    for (const int type : {1, 2, 3, 0, 99}) {
        RawConnection peer = Connect();
        ASSERT_TRUE(peer.Write(HeaderBytes(0, type, 7)));
        EXPECT_TRUE(peer.PeerCloses()) << type;
        ASSERT_NO_FATAL_FAILURE(ExpectOthersNoticeNothing());
    }
    EXPECT_EQ(5, mLog.Count(ANDROID_LOG_WARN, "tolm_IPC", "peer closed!")) << mLog.Text();
    EXPECT_TRUE(Events().empty());
}

TEST_F(DamagedConnection, IsServedAMessageOfSize1) {
    RawConnection peer = Connect();
    ASSERT_TRUE(peer.Write(FrameBytes(2, 7, "x")));
    const std::optional<Frame> reply = peer.ReadFrame();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ("x", reply->payload);
    ExpectOthersNoticeNothing();
}

TEST_F(DamagedConnection, ThatAnnouncesMoreThanItSendsDeliversNothing) {
    for (const uint32_t size : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        for (const int type : {1, 2, 3}) {
            RawConnection peer = Connect();
            // The server may have closed already, when it cannot store so much.
            peer.Write(HeaderBytes(size, type, 7) + std::string(5000, 'x'));
            ASSERT_NO_FATAL_FAILURE(ExpectOthersNoticeNothing());
            peer.Close();
            ASSERT_NO_FATAL_FAILURE(ExpectOthersNoticeNothing());
        }
    }
    RawConnection later = Connect();
    ExpectServed(later);
    EXPECT_TRUE(Events().empty());
}

TEST_F(DamagedConnection, OfAnUnknownTypeIsServedTheNextMessage) {
    RawConnection peer = Connect();
    for (const int type : {0, 3, 4, 1000, -1}) {
        ASSERT_TRUE(peer.Write(FrameBytes(type, 7, "dropped")));
        ASSERT_NO_FATAL_FAILURE(ExpectServed(peer));
        ASSERT_NO_FATAL_FAILURE(ExpectOthersNoticeNothing());
    }
    EXPECT_TRUE(Events().empty());
}

// A peer that goes with a reply unread resets its connection instead of closing it.
TEST_F(DamagedConnection, ResetWithAReplyUnreadEnds) {
    for (int round = 0; round < 50; ++round) {
        RawConnection peer = Connect();
        const size_t before = mDelegate.Count();
        ASSERT_TRUE(peer.Write(FrameBytes(2, 7, "question") + FrameBytes(1, 7, "tail").substr(0, 9)));
        ASSERT_TRUE(mDelegate.WaitForFrames(before + 1));
        peer.Close();
        ASSERT_NO_FATAL_FAILURE(ExpectOthersNoticeNothing());
    }
    EXPECT_TRUE(WaitFor([&] { return mLog.Count(ANDROID_LOG_WARN, "tolm_IPC", "peer closed!") == 50; })) << mLog.Text();
    EXPECT_TRUE(Events().empty());
}

}  // namespace

}  // namespace hbbtv::test
