// hbbtvctl send and emit: either side of the wire, byte by byte, and what comes back.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ctl.h"
#include "raw_listener.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;

class Send : public Alone {
  protected:
    FakePlatform mChannel{"service_plugin_to_hbbtv_vb_chn", R"({"ret": 0, "name": "K\u00f6ln"})"};
    FakePlatform mConfig{"service_plugin_to_hbbtv_vb_chn_config", R"({"ret": 0, "handle": "0x1000"})"};
};

TEST_F(Send, WritesTheRequestThatTheLibraryWritesAndShowsTheReply) {
    const FinishedRun run = Ctl({"send", "channel.GetName", "c_handle=0x1000"});
    EXPECT_EQ("name  \"K\xc3\xb6ln\"\nret   0\n", run.output) << run.errors;
    EXPECT_EQ(0, run.exit);
    ASSERT_EQ(1u, mChannel.Frames().size());
    EXPECT_EQ(kRequest, mChannel.Frames()[0].type);
    EXPECT_EQ(2, mChannel.Frames()[0].port);
    const std::string byTool = mChannel.Frames()[0].payload;
    // The library's own request, for the same call.
    ServiceProcess service;
    ASSERT_NE(nullptr, FindVideoBroadcast());
    ASSERT_EQ(0, Ctl({"call", "IChannel.GetName", "0x1000"}).exit);
    ASSERT_EQ(2u, mChannel.Frames().size());
    EXPECT_EQ(mChannel.Frames()[1].payload, byTool);
    EXPECT_THAT(byTool, HasSubstr("\"c_handle\" : \"0x1000\""));
}

TEST_F(Send, WritesListsUnderNumberedKeysAndTheirLength) {
    const FinishedRun run = Ctl({"send", "channel_config.CreateChannelList", "channel=0x10,0,0x30", "--verbose"});
    ASSERT_EQ(1u, mConfig.Frames().size()) << run.Text();
    EXPECT_EQ(
        "{\n\t\"channel0\" : \"0x10\",\n\t\"channel1\" : \"\",\n\t\"channel2\" : \"0x30\",\n"
        "\t\"method\" : 8,\n\t\"size\" : 3,\n\t\"type\" : 19\n}\n",
        mConfig.Frames()[0].payload);
    EXPECT_EQ("to " + mDirectory / "service_plugin_to_hbbtv_vb_chn_config, port 3:\n" + mConfig.Frames()[0].payload,
              run.errors);
}

TEST_F(Send, EndsNumberedKeysWhereTheLibraryDoes) {
    FakePlatform manager("service_plugin_to_hbbtv_apm", R"({"ret": 0})");
    std::string keys = "1000";
    for (int i = 1; i < 102; ++i) keys += "," + std::to_string(1000 + i);
    ASSERT_EQ(0, Ctl({"send", "application_manager.SetValue", "appid=1", "orgid=2", "value=3", "k=" + keys}).exit);
    ASSERT_TRUE(manager.WaitForFrames(1));
    const std::string payload = manager.Frames()[0].payload;
    // Keys 100 and 101 go under "k10" again.
    EXPECT_THAT(payload, HasSubstr("\t\"k10\" : 1101,\n"));
    EXPECT_THAT(payload, HasSubstr("\t\"k11\" : 1011,\n"));
    EXPECT_THAT(payload, testing::Not(HasSubstr("\"k100\"")));
    EXPECT_THAT(payload, HasSubstr("\t\"keynum\" : 102,\n"));
}

TEST_F(Send, GivesTheReplyAsADocumentWithItsTime) {
    const Json::Value document =
        Document(Ctl({"send", "channel.GetName", "--json", R"({"c_handle": 4096})", "--time"}));
    EXPECT_EQ("channel.GetName", document["sent"].asString());
    EXPECT_EQ(mDirectory / "service_plugin_to_hbbtv_vb_chn", document["path"].asString());
    EXPECT_EQ("K\xc3\xb6ln", document["reply"]["name"].asString());
    EXPECT_LT(0, document["took_us"].asInt64());
    EXPECT_EQ("{\n\t\"c_handle\" : \"0x1000\"", mChannel.Frames()[0].payload.substr(0, 24));
}

TEST_F(Send, NeedsNoReplyToAOneWayOperation) {
    FakePlatform files("service_dsmcc_to_hbbtv", R"({"ret": 0})");
    const FinishedRun run = Ctl({"send", "dsmcc.RequestFile", "dvb://1.2.3", "context=0x10"});
    EXPECT_EQ("sent, no reply is expected\n", run.output) << run.errors;
    ASSERT_TRUE(files.WaitForFrames(1));
    EXPECT_EQ(kOneWay, files.Frames()[0].type);
    const Json::Value document = Document(Ctl({"send", "dsmcc.RequestFile", "dvb://1.2.3", "context=0x10", "--json"}));
    EXPECT_TRUE(document.isMember("reply"));
    EXPECT_TRUE(document["reply"].isNull());
}

TEST_F(Send, WritesExactlyTheRawBytesAndShowsWhatComesBackInHexadecimal) {
    const std::string damaged("\x05\0\0\0\x02\0\0\0\x02\0\0\0{\"a\0", 16);
    WriteFile(mDirectory / "bytes", damaged);
    RawListener listener(mDirectory / "service_plugin_to_hbbtv_vb");
    CtlProcess ctl({"send", "video_broadcast", "--raw", "@" + (mDirectory / "bytes")});
    RawConnection connection = listener.Accept();
    EXPECT_EQ(damaged, connection.Read(16));
    connection.Write(std::string("ret\0\xff 0123456789abc", 18));
    connection.Close();
    EXPECT_EQ(0, ctl.WaitForExit());
    EXPECT_EQ(
        "000000  72 65 74 00 ff 20 30 31 32 33 34 35 36 37 38 39  ret.. 0123456789\n"
        "000010  61 62                                            ab\n",
        ctl.Output());
    mChannel.SetReply(R"({"ret": 0})");
    const std::string request = FrameBytes(kRequest, 2, "{}");
    WriteFile(mDirectory / "bytes", request);
    const Json::Value document = Document(Ctl({"send", "channel", "--raw", "@" + (mDirectory / "bytes"), "--json"}));
    EXPECT_EQ(14, document["sent_bytes"].asInt());
    EXPECT_EQ(
        "0a0000000300000002000000"
        "7b22726574223a20307d",
        document["received"].asString());
}

class Emit : public Alone {
  protected:
    RawListener mSocket{mDirectory / "service_hbbtv_to_plugin_vb"};
};

TEST_F(Emit, WritesAnEventOneWayAsThePlatformDoes) {
    CtlProcess ctl(
        {"emit", "video_broadcast", "onPlayStateChange", "state=2", "error=0", "context=0xc0de", "--one-way"});
    RawConnection connection = mSocket.Accept();
    const std::optional<Frame> frame = connection.ReadFrame();
    ASSERT_TRUE(frame.has_value());
    EXPECT_EQ(kOneWay, frame->type);
    EXPECT_EQ(7, frame->port);
    EXPECT_EQ(
        "{\n\t\"context\" : \"0xc0de\",\n\t\"error\" : 0,\n\t\"event\" : 1,\n\t\"state\" : 2,\n"
        "\t\"type\" : \"videobroadcast\"\n}\n",
        frame->payload);
    EXPECT_EQ(0, ctl.WaitForExit());
    EXPECT_EQ("sent, no reply is expected\n", ctl.Output());
}

TEST_F(Emit, WritesAnEventThatAsksForAReplyAndShowsIt) {
    CtlProcess ctl({"emit", "video_broadcast", "videobroadcast:1", "--request"});
    RawConnection connection = mSocket.Accept();
    const std::optional<Frame> frame = connection.ReadFrame();
    ASSERT_TRUE(frame.has_value());
    EXPECT_EQ(kRequest, frame->type);
    EXPECT_EQ("{\n\t\"event\" : 1,\n\t\"type\" : \"videobroadcast\"\n}\n", frame->payload)
        << "nothing but what was given";
    connection.Write(FrameBytes(kReply, 7, R"({"ret": 0})"));
    EXPECT_EQ(0, ctl.WaitForExit());
    EXPECT_EQ("ret  0\n", ctl.Output());
}

class EmitToTheLibrary : public InFrontOfTheSystem {};

TEST_F(EmitToTheLibrary, ReachesTheClientByCodeNameAndMethod) {
    Listener listener({"channel_config"});
    ASSERT_TRUE(listener.Listens());
    for (const char* event : {"0", "changed", "OnChannelConfigEvent"}) {
        const FinishedRun run = Ctl({"emit", "channel_config", event, "reserved=A"});
        EXPECT_EQ("sent, no reply is expected\n", run.output) << event << run.errors;
    }
    ASSERT_TRUE(listener.WaitForEvents(3)) << listener.Output();
    EXPECT_EQ(65, listener.Events()[2]["arguments"]["info"]["reserved"].asInt());
}

TEST_F(EmitToTheLibrary, TellsWhenNobodyTakesIt) {
    // The library has opened its socket, and forgotten the client.
    ASSERT_EQ(0, Ctl({"listen", "channel_config", "video_broadcast", "--for", "1ms"}).exit);
    const FinishedRun run = Ctl({"emit", "channel_config", "changed", "--request"});
    EXPECT_EQ(3, run.exit);
    EXPECT_EQ(
        "hbbtvctl: " + mDirectory /
                           "service_hbbtv_to_plugin_vb_chn_config: nobody takes channel_config event changed: no "
                           "client is registered for it, or with another context, or the family takes it without a "
                           "reply only (--one-way)\n",
        run.errors);
    EXPECT_EQ(3, Ctl({"emit", "video_broadcast", "17", "--request"}).exit);
}

TEST_F(EmitToTheLibrary, RawBytesHurtNobody) {
    ASSERT_EQ(0, Ctl({"listen", "channel_config", "--for", "1ms"}).exit);
    const FinishedRun run =
        Ctl({"emit", "channel_config", "--raw", "no message at all, by no means", "--timeout", "100ms"});
    EXPECT_EQ(0, run.exit) << run.Text();
    EXPECT_EQ("nothing came back\n", run.output);
    const FinishedRun empty = Ctl({"emit", "channel_config", "--raw", "", "--timeout", "100ms"});
    EXPECT_EQ(0, empty.exit) << empty.Text();
    EXPECT_EQ("nothing came back\n", empty.output) << "no bytes are bytes, too";
    EXPECT_EQ(0, Ctl({"call", "IChannelConfig.GetCurrentChannel"}).exit);
}

}  // namespace

}  // namespace hbbtv::test
