// Events as JSON documents, sent by hand to the endpoint of a receiver.
#include <android/log.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "event_receiver.h"
#include "log_capture.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

constexpr TolmIpcKeyId kKey = TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB;  // 50, 32 in hexadecimal
constexpr char kTag[] = "[ipc_base]";

using Texts = std::vector<std::string>;

// None of these is a JSON object.
const Texts& NoObjects() {
    static const Texts texts = {"x",
                                " ",
                                "{\"a\":",
                                "{\"a\" 1}",
                                "\xff",
                                "[]",
                                "[{}]",
                                "3",
                                "\"a\"",
                                "null",
                                "true",
                                std::string(1000, '['),
                                std::string(1001, '[') + std::string(1001, ']')};
    return texts;
}

class BaseServer : public testing::Test {
  protected:
    BaseServer() {
        EXPECT_TRUE(mReceiver.Start());
        mLog.Clear();
    }

    RawConnection Connect() const { return RawConnection::To(mDirectory / "service_hbbtv_to_plugin_vb"); }

    // The reply to a synchronous message, or "nothing".
    std::string Ask(const std::string& text) {
        RawConnection connection = Connect();
        EXPECT_TRUE(connection.Write(FrameBytes(2, 7, text)));
        const std::optional<Frame> reply = connection.ReadFrame();
        return reply ? reply->payload : "nothing";
    }

    // Lines of the JSON bases, as priority and message.
    Texts Lines() const {
        Texts lines;
        for (const LogLine& line : mLog.Lines()) {
            if (line.tag == kTag) lines.push_back(std::to_string(line.priority) + " " + line.message);
        }
        return lines;
    }

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    LogCapture mLog;
    EventReceiver mReceiver{kKey, 7, [](const Json::Value& msg, Json::Value& out) {
                                if (msg.isMember("answer")) out["heard"] = msg["answer"];
                            }};
};

TEST_F(BaseServer, HandsOnAnEventAndLogsIt) {
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(1, 7, "{\"event\":5}")));
    ASSERT_TRUE(mReceiver.WaitForMessages(1));
    EXPECT_EQ(5, mReceiver.Messages()[0]["event"].asInt());
    EXPECT_EQ(Texts{"3 recv msg:{\n\t\"event\" : 5\n}\n in m_ipc_id(32) port(7)"}, Lines());
    EXPECT_EQ("tolm_base_server.cpp", mLog.Lines().back().file);
    EXPECT_EQ("OnRecv", mLog.Lines().back().function);
}

TEST_F(BaseServer, SendsBackWhatTheHandlerGivesAndLogsBoth) {
    EXPECT_EQ("{\n\t\"heard\" : 5\n}\n", Ask("{\"answer\":5}"));
    ASSERT_TRUE(WaitFor([this] { return !Lines().empty(); }));
    EXPECT_EQ(Texts{"3 recv msg:{\n\t\"answer\" : 5\n}\n and out_msg:{\n\t\"heard\" : 5\n}\n in m_ipc_id(32) port(7)"},
              Lines());
}

TEST_F(BaseServer, SendsTheTextOfNullWhenTheHandlerGivesNothing) {
    EXPECT_EQ("null\n", Ask("{\"other\":5}"));
    EXPECT_EQ(1u, mReceiver.Count());
}

TEST_F(BaseServer, RepliesOnTheRequestsPortWithAReply) {
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "{}")));
    const std::optional<Frame> reply = connection.ReadFrame();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(3, reply->type);
    EXPECT_EQ(7, reply->port);
}

TEST_F(BaseServer, DropsAnEventThatIsNotAnObjectWithOneLine) {
    RawConnection connection = Connect();
    for (const std::string& text : NoObjects()) {
        mLog.Clear();
        ASSERT_TRUE(connection.Write(FrameBytes(1, 7, text)));
        ASSERT_TRUE(mLog.WaitForLine(ANDROID_LOG_WARN, kTag, "Ipc2Json failed")) << text;
        // The next message finds the same connection open.
        ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "{}")));
        EXPECT_TRUE(connection.ReadFrame().has_value());
        EXPECT_EQ(1, mLog.Count(ANDROID_LOG_WARN, kTag, "Ipc2Json failed")) << mLog.Text();
    }
    EXPECT_EQ(NoObjects().size(), mReceiver.Count());  // the requests alone
}

TEST_F(BaseServer, DropsAnEventOfMoreThan16MiBAndKeepsTheConnection) {
    const std::string text = "{}" + std::string(16 << 20, ' ');
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(1, 7, text)));
    ASSERT_TRUE(mLog.WaitForLine(ANDROID_LOG_WARN, kTag, "Ipc2Json failed")) << mLog.Text();
    ASSERT_TRUE(connection.Write(FrameBytes(2, 7, text)));
    EXPECT_EQ(connection.Read(12), HeaderBytes(0, 3, 7));
    EXPECT_EQ(mReceiver.Count(), 0u);
    ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "{}")));
    EXPECT_TRUE(connection.ReadFrame().has_value());
}

TEST_F(BaseServer, SendsAnEmptyReplyToARequestThatIsNotAnObject) {
    for (const std::string& text : NoObjects()) {
        mLog.Clear();
        RawConnection connection = Connect();
        ASSERT_TRUE(connection.Write(FrameBytes(2, 7, text)));
        EXPECT_EQ(HeaderBytes(0, 3, 7), connection.Read(12)) << text;
        EXPECT_EQ(Texts{"5 Ipc2Json failed"}, Lines()) << text;
    }
    EXPECT_EQ(0u, mReceiver.Count());
}

TEST_F(BaseServer, SendsAnEmptyReplyForAPortWithoutReceiver) {
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(2, 9, "{}")));
    EXPECT_EQ(HeaderBytes(0, 3, 9), connection.Read(12));
    EXPECT_EQ(Texts{"5 channel(32) port(9): no receiver"}, Lines());
}

TEST_F(BaseServer, HearsNothingAfterItsStop) {
    RawConnection connection = Connect();
    ASSERT_TRUE(connection.Write(FrameBytes(2, 7, "{}")));
    ASSERT_TRUE(connection.ReadFrame().has_value());
    mReceiver.Stop();
    EXPECT_TRUE(connection.PeerCloses());
    EXPECT_EQ(1u, mReceiver.Count());
    mReceiver.Stop();  // once more does nothing
}

TEST(BaseServerLog, HasNoDebugLinesWhenTheyAreFilteredButAlwaysWarnings) {
    const ScratchDirectory directory;
    const StdoutCapture out;
    const LogCapture log(ANDROID_LOG_WARN);
    EventReceiver receiver(kKey, 7);
    receiver.Start();
    RawConnection connection = RawConnection::To(directory / "service_hbbtv_to_plugin_vb");
    ASSERT_TRUE(connection.Write(FrameBytes(1, 7, "{}") + FrameBytes(1, 7, "x") + FrameBytes(2, 7, "{}")));
    EXPECT_TRUE(connection.ReadFrame().has_value());
    EXPECT_EQ(1, log.Count(ANDROID_LOG_WARN, kTag, "Ipc2Json failed")) << log.Text();
    for (const LogLine& line : log.Lines()) EXPECT_NE(ANDROID_LOG_DEBUG, line.priority) << line.text;
}

TEST(BaseServerItself, HandlesNothingAndAnswersNull) {
    const ScratchDirectory directory;
    const StdoutCapture out;
    TolmBaseServer receiver(kKey, 7);
    EXPECT_TRUE(receiver.Start());
    RawConnection connection = RawConnection::To(directory / "service_hbbtv_to_plugin_vb");
    ASSERT_TRUE(connection.Write(FrameBytes(1, 7, "{}") + FrameBytes(2, 7, "{}")));
    const std::optional<Frame> reply = connection.ReadFrame();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ("null\n", reply->payload);
}

}  // namespace

}  // namespace hbbtv::test
