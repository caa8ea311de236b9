// The end of a process that serves endpoints: it never hangs, whatever its connections are doing.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "child_process.h"
#include "raw_socket.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

class ProcessExit : public testing::Test {
  protected:
    ProcessExit() { EXPECT_TRUE(mProcess.WaitForOutput("serving\n")) << mProcess.Output(); }

    RawConnection Connect() const { return RawConnection::To(mDirectory / "service_hbbtv_to_plugin_vb"); }

    void Tell(const std::string& line) {
        mProcess.Write(line + "\n");
        ASSERT_TRUE(mProcess.WaitForOutput("will be " + line)) << mProcess.Output();
    }

    void ExpectEnd() { EXPECT_EQ(std::optional<int>(0), mProcess.WaitForExit()) << mProcess.Output(); }

    const ScratchDirectory mDirectory;
    ChildProcess mProcess{{SERVING_PROCESS}};
};

TEST_F(ProcessExit, ComesWithServersThatNobodyUses) {
    mProcess.CloseInput();
    ExpectEnd();
}

TEST_F(ProcessExit, ComesWithIdleAndHalfSentConnections) {
    RawConnection idle = Connect();
    RawConnection header = Connect();
    ASSERT_TRUE(header.Write(FrameBytes(1, 7, "{}").substr(0, 5)));
    RawConnection payload = Connect();
    ASSERT_TRUE(payload.Write(FrameBytes(1, 7, "{}").substr(0, 13)));
    RawConnection search = RawConnection::To(mDirectory / "service_hbbtv_to_plugin_sm");
    mProcess.CloseInput();
    ExpectEnd();
    EXPECT_TRUE(idle.PeerCloses());
    EXPECT_TRUE(search.PeerCloses());
}

TEST_F(ProcessExit, ComesWithAnUnreadReply) {
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "{}")));
    EXPECT_EQ(100u, connection.Read(100).size());
    mProcess.CloseInput();
    ExpectEnd();
}

TEST_F(ProcessExit, ComesWhenTheRunningHandlersHaveEnded) {
    ASSERT_NO_FATAL_FAILURE(Tell("slow"));
    std::vector<RawConnection> connections;
    for (int i = 0; i < 3; ++i) {
        connections.push_back(Connect());
        ASSERT_TRUE(connections.back().Write(FrameBytes(1, 7, "{}")));
    }
    mProcess.CloseInput();
    ExpectEnd();
}

TEST_F(ProcessExit, ComesWhileMessagesFlow) {
    std::vector<RawConnection> connections;
    for (int i = 0; i < 3; ++i) connections.push_back(Connect());
    mProcess.CloseInput();
    bool open = true;
    while (open) {
        open = false;
        for (RawConnection& connection : connections) open = connection.Write(FrameBytes(1, 7, "{}")) || open;
    }
    ExpectEnd();
}

TEST_F(ProcessExit, ComesFromInsideAHandler) {
    ASSERT_NO_FATAL_FAILURE(Tell("exit-in-handler"));
    RawConnection other = Connect();
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(1, 7, "{}")));
    ExpectEnd();
}

}  // namespace

}  // namespace hbbtv::test
