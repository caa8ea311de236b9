// Requests as JSON documents against a platform played by hand.
#include <android/log.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "ipc/src/tolm_base_client.h"
#include "log_capture.h"
#include "raw_listener.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

constexpr char kName[] = "service_plugin_to_hbbtv_vb";
constexpr char kTag[] = "[ipc_base]";

struct Client : TolmBaseClient {
    Client() : TolmBaseClient(TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB, 7) {}
};

Json::Value Request() {
    Json::Value request(Json::objectValue);
    request["type"] = 3;
    request["method"] = 11;
    return request;
}

constexpr char kRequestText[] = "{\n\t\"method\" : 11,\n\t\"type\" : 3\n}\n";

class BaseClient : public testing::Test {
  protected:
    // What a request gives when the platform answers with this text.
    int StatusOf(const std::string& reply) {
        mPlatform.SetReply(reply);
        mReply = Json::Value();
        mLog.Clear();
        return mClient.SendIpc(Request(), mReply);
    }

    // Lines of the JSON bases, as priority and message.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (const LogLine& line : mLog.Lines()) {
            if (line.tag == kTag) lines.push_back(std::to_string(line.priority) + " " + line.message);
        }
        return lines;
    }

    using Texts = std::vector<std::string>;

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    LogCapture mLog;
    FakePlatform mPlatform{kName, "{\"ret\":0}"};
    Client mClient;
    Json::Value mReply;
};

TEST_F(BaseClient, SendsARequestAsStyledText) {
    EXPECT_EQ(0, mClient.SendIpc(Request()));
    ASSERT_EQ(1u, mPlatform.Frames().size());
    const Frame frame = mPlatform.Frames()[0];
    EXPECT_EQ(2, frame.type);
    EXPECT_EQ(7, frame.port);
    EXPECT_EQ(kRequestText, frame.payload);
}

TEST_F(BaseClient, GivesTheRepliesRetAndItsOtherMembers) {
    EXPECT_EQ(3, StatusOf("{\"ret\" : 3, \"name\" : \"x\"}"));
    EXPECT_EQ("x", mReply["name"].asString());
    EXPECT_EQ(0, StatusOf("{\"ret\" : 0}"));
    EXPECT_EQ(-5, StatusOf("{\"ret\" : -5}"));
    EXPECT_EQ(2147483647, StatusOf("{\"ret\" : 2147483647}"));
    EXPECT_EQ(-2147483647 - 1, StatusOf("{\"ret\" : -2147483648}"));
}

TEST_F(BaseClient, LogsRequestAndReplyInStyledText) {
    EXPECT_EQ(3, StatusOf("{\"ret\":3}"));
    EXPECT_EQ(Texts{"3 send msg:" + std::string(kRequestText) + ", out_msg:{\n\t\"ret\" : 3\n}\n"}, Lines());
    EXPECT_EQ("tolm_base_client.cpp", mLog.Lines().back().file);
    EXPECT_EQ("SendIpc", mLog.Lines().back().function);
    EXPECT_EQ(std::string::npos, mOut.Text().find("send msg"));
}

TEST_F(BaseClient, FailsWhenRetIsNoInteger) {
    for (const char* reply :
         {"{\"ret\":\"3\"}", "{\"ret\":null}", "{\"ret\":true}", "{\"ret\":3.5}", "{\"ret\":[3]}", "{\"ret\":{}}",
          "{\"ret\":2147483648}", "{\"ret\":-2147483649}", "{\"ret\":1e100}", "{\"Ret\":3}", "{}"}) {
        EXPECT_EQ(-1, StatusOf(reply)) << reply;
        EXPECT_EQ(Texts{"5 SendIpc failed 1 1 0"}, Lines()) << reply;
    }
}

TEST_F(BaseClient, AddsANullRetToAReplyWithoutOne) {
    EXPECT_EQ(-1, StatusOf("{\"name\":\"x\"}"));
    ASSERT_TRUE(mReply.isMember("ret"));
    EXPECT_TRUE(mReply["ret"].isNull());
    EXPECT_EQ("x", mReply["name"].asString());
}

TEST_F(BaseClient, FailsWhenTheReplyIsNoObjectLikeWithoutRet) {
    for (const char* reply : {"[]", "[1]", "[{\"ret\":3}]", "3", "\"ret\"", "null", "true", "1.5"}) {
        EXPECT_EQ(-1, StatusOf(reply)) << reply;
        EXPECT_EQ(Texts{"5 SendIpc failed 1 1 0"}, Lines()) << reply;
    }
}

TEST_F(BaseClient, FailsWhenTheReplyIsNoJson) {
    const std::string deep = std::string(1001, '[') + std::string(1001, ']');
    const std::string open(1000, '[');
    for (const std::string& reply : Texts{"x", " ", "{\"ret\":3", "{\"ret\" 3}", "\xff\xfe", deep, open}) {
        EXPECT_EQ(-1, StatusOf(reply)) << reply;
        EXPECT_EQ(Texts{"5 SendIpc failed 1 0 1"}, Lines()) << reply;
    }
}

TEST_F(BaseClient, FailsWhenTheReplyHasMoreThan16MiBAndKeepsTheConnection) {
    EXPECT_EQ(StatusOf("{\"ret\":0}" + std::string(16 << 20, ' ')), -1);
    EXPECT_EQ(Lines(), Texts{"5 SendIpc failed 1 0 1"});
    EXPECT_EQ(StatusOf("{\"ret\":4}"), 4);
    EXPECT_EQ(mPlatform.Connections(), 1);
}

TEST_F(BaseClient, FailsWhenTheReplyIsEmptyAndConnectsAgain) {
    EXPECT_EQ(-1, StatusOf(""));
    EXPECT_EQ(Texts{"5 SendIpc failed 0 1 1"}, Lines());
    EXPECT_EQ(4, StatusOf("{\"ret\":4}"));
    EXPECT_EQ(2, mPlatform.Connections());
}

TEST_F(BaseClient, SendsAOneWayMessageAndLogsIt) {
    mLog.Clear();
    EXPECT_EQ(0, mClient.SendIpcWithNoRet(Request()));
    EXPECT_EQ(Texts{"3 send msg:" + std::string(kRequestText)}, Lines());
    EXPECT_EQ("SendIpcWithNoRet", mLog.Lines().back().function);
    ASSERT_TRUE(mPlatform.WaitForFrames(1));
    const Frame frame = mPlatform.Frames()[0];
    EXPECT_EQ(1, frame.type);
    EXPECT_EQ(7, frame.port);
    EXPECT_EQ(kRequestText, frame.payload);
}

TEST_F(BaseClient, MakesOneRequestAtATimeSoThatEachGetsItsOwnReply) {
    mPlatform.SetAnswer([](const Frame& request) {
        // The number stands behind the name and ends the text's line.
        return "{\"ret\":" + std::to_string(std::atoi(request.payload.c_str() + request.payload.find(':') + 1)) + "}";
    });
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([this, t] {
            for (int i = 0; i < 100; ++i) {
                Json::Value request(Json::objectValue);
                request["number"] = t * 1000 + i;
                ASSERT_EQ(t * 1000 + i, mClient.SendIpc(request));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(1, mPlatform.Connections());
}

TEST(BaseClientLog, HasNoDebugLinesWhenTheyAreFilteredButAlwaysWarnings) {
    const ScratchDirectory directory;
    const StdoutCapture out;
    const LogCapture log(ANDROID_LOG_WARN);
    FakePlatform platform(kName, "{\"ret\":0}");
    Client client;
    EXPECT_EQ(0, client.SendIpc(Request()));
    EXPECT_EQ(0, client.SendIpcWithNoRet(Request()));
    platform.SetReply("{}");
    EXPECT_EQ(-1, client.SendIpc(Request()));
    EXPECT_EQ(1, log.Count(ANDROID_LOG_WARN, kTag, "SendIpc failed 1 1 0")) << log.Text();
    for (const LogLine& line : log.Lines()) EXPECT_NE(ANDROID_LOG_DEBUG, line.priority) << line.text;
}

TEST(BaseClientWithoutPlatform, FailsAndConnectsWhenThePlatformIsThere) {
    const ScratchDirectory directory;
    const StdoutCapture out;
    const LogCapture log;
    Client client;
    EXPECT_EQ(-1, client.SendIpc(Request()));
    EXPECT_EQ(1, log.Count(ANDROID_LOG_WARN, kTag, "SendIpc failed 0 1 1")) << log.Text();
    const FakePlatform platform(kName, "{\"ret\":6}");
    EXPECT_EQ(6, client.SendIpc(Request()));
}

TEST(BaseClientWithoutPlatform, FailsToSendOneWayWithoutALineOfItsOwn) {
    const ScratchDirectory directory;
    const StdoutCapture out;
    const LogCapture log;
    Client client;
    EXPECT_EQ(-1, client.SendIpcWithNoRet(Request()));
    for (const LogLine& line : log.Lines()) EXPECT_EQ("tolm_IPC", line.tag) << line.text;
}

TEST(BaseClientThreads, SendOneWayWhileAnotherWaitsForItsReply) {
    const ScratchDirectory directory;
    const StdoutCapture out;
    RawListener listener(directory / kName);
    Client client;
    std::thread asking([&] { EXPECT_EQ(9, client.SendIpc(Request())); });
    RawConnection platform = listener.Accept();
    ASSERT_TRUE(platform.ReadFrame().has_value());
    Json::Value event(Json::objectValue);
    event["beside"] = true;
    EXPECT_EQ(0, client.SendIpcWithNoRet(event));
    const std::optional<Frame> frame = platform.ReadFrame();
    ASSERT_TRUE(frame.has_value());
    EXPECT_EQ(1, frame->type);
    EXPECT_EQ("{\n\t\"beside\" : true\n}\n", frame->payload);
    ASSERT_TRUE(platform.Write(FrameBytes(3, 7, "{\"ret\":9}")));
    asking.join();
}

}  // namespace

}  // namespace hbbtv::test
