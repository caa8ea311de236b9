// hbbtvctl send and emit: the bytes that are sent, and the output.

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
    EXPECT_EQ(run.output, "name  \"K\xc3\xb6ln\"\nret   0\n") << run.errors;
    EXPECT_EQ(run.exit, 0);
    ASSERT_EQ(mChannel.Frames().size(), 1u);
    EXPECT_EQ(mChannel.Frames()[0].type, kRequest);
    EXPECT_EQ(mChannel.Frames()[0].port, 2);
    const std::string byTool = mChannel.Frames()[0].payload;
    // The request of the library for the same call.
    ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr);
    ASSERT_EQ(Ctl({"call", "IChannel.GetName", "0x1000"}).exit, 0);
    ASSERT_EQ(mChannel.Frames().size(), 2u);
    EXPECT_EQ(mChannel.Frames()[1].payload, byTool);
    EXPECT_THAT(byTool, HasSubstr("\"c_handle\" : \"0x1000\""));
}

TEST_F(Send, WritesListsUnderNumberedKeysAndTheirLength) {
    const FinishedRun run = Ctl({"send", "channel_config.CreateChannelList", "channel=0x10,0,0x30", "--verbose"});
    ASSERT_EQ(mConfig.Frames().size(), 1u) << run.Text();
    EXPECT_EQ(mConfig.Frames()[0].payload,
              "{\n\t\"channel0\" : \"0x10\",\n\t\"channel1\" : \"\",\n\t\"channel2\" : \"0x30\",\n"
              "\t\"method\" : 8,\n\t\"size\" : 3,\n\t\"type\" : 19\n}\n");
    EXPECT_EQ(run.errors,
              "to " + mDirectory / "service_plugin_to_hbbtv_vb_chn_config, port 3:\n" + mConfig.Frames()[0].payload);
}

TEST_F(Send, EndsNumberedKeysWhereTheLibraryDoes) {
    FakePlatform manager("service_plugin_to_hbbtv_apm", R"({"ret": 0})");
    std::string keys = "1000";
    for (int i = 1; i < 102; ++i) keys += "," + std::to_string(1000 + i);
    ASSERT_EQ(Ctl({"send", "application_manager.SetValue", "appid=1", "orgid=2", "value=3", "k=" + keys}).exit, 0);
    ASSERT_TRUE(manager.WaitForFrames(1));
    const std::string payload = manager.Frames()[0].payload;
    // Keys 100 and 101 replace "k10".
    EXPECT_THAT(payload, HasSubstr("\t\"k10\" : 1101,\n"));
    EXPECT_THAT(payload, HasSubstr("\t\"k11\" : 1011,\n"));
    EXPECT_THAT(payload, testing::Not(HasSubstr("\"k100\"")));
    EXPECT_THAT(payload, HasSubstr("\t\"keynum\" : 102,\n"));
}

TEST_F(Send, PrintsTheReplyAsADocumentWithItsTime) {
    const Json::Value document =
        Document(Ctl({"send", "channel.GetName", "--json", R"({"c_handle": 4096})", "--time"}));
    EXPECT_EQ(document["sent"].asString(), "channel.GetName");
    EXPECT_EQ(document["path"].asString(), mDirectory / "service_plugin_to_hbbtv_vb_chn");
    EXPECT_EQ(document["reply"]["name"].asString(), "K\xc3\xb6ln");
    EXPECT_LT(0, document["took_us"].asInt64());
    EXPECT_EQ(mChannel.Frames()[0].payload.substr(0, 24), "{\n\t\"c_handle\" : \"0x1000\"");
}

TEST_F(Send, ExpectsNoReplyToAOneWayOperation) {
    FakePlatform files("service_dsmcc_to_hbbtv", R"({"ret": 0})");
    const FinishedRun run = Ctl({"send", "dsmcc.RequestFile", "dvb://1.2.3", "context=0x10"});
    EXPECT_EQ(run.output, "sent; no reply expected\n") << run.errors;
    ASSERT_TRUE(files.WaitForFrames(1));
    EXPECT_EQ(files.Frames()[0].type, kOneWay);
    const Json::Value document = Document(Ctl({"send", "dsmcc.RequestFile", "dvb://1.2.3", "context=0x10", "--json"}));
    EXPECT_TRUE(document.isMember("reply"));
    EXPECT_TRUE(document["reply"].isNull());
}

TEST_F(Send, WritesExactlyTheRawBytesAndPrintsTheReplyInHexadecimal) {
    const std::string damaged("\x05\0\0\0\x02\0\0\0\x02\0\0\0{\"a\0", 16);
    WriteFile(mDirectory / "bytes", damaged);
    RawListener listener(mDirectory / "service_plugin_to_hbbtv_vb");
    CtlProcess ctl({"send", "video_broadcast", "--raw", "@" + (mDirectory / "bytes")});
    RawConnection connection = listener.Accept();
    EXPECT_EQ(connection.Read(16), damaged);
    connection.Write(std::string("ret\0\xff 0123456789abc", 18));
    connection.Close();
    EXPECT_EQ(ctl.WaitForExit(), 0);
    EXPECT_EQ(ctl.Output(),
              "000000  72 65 74 00 ff 20 30 31 32 33 34 35 36 37 38 39  ret.. 0123456789\n"
              "000010  61 62                                            ab\n");
    mChannel.SetReply(R"({"ret": 0})");
    const std::string request = FrameBytes(kRequest, 2, "{}");
    WriteFile(mDirectory / "bytes", request);
    const Json::Value document = Document(Ctl({"send", "channel", "--raw", "@" + (mDirectory / "bytes"), "--json"}));
    EXPECT_EQ(document["sent_bytes"].asInt(), 14);
    EXPECT_EQ(document["received"].asString(),
              "0a0000000300000002000000"
              "7b22726574223a20307d");
}

struct Wrong {
    std::vector<std::string> arguments;
    std::string problem;
};

const std::vector<Wrong> kWrong{
    {{"send", "channel.GetName"}, "channel.GetName: member \"c_handle\" is missing: expected a handle"},
    {{"send", "channel.GetName", "c_handle=K\xc3\xb6ln"},
     "channel.GetName: member \"c_handle\" is \"K\\u00f6ln\": expected a handle, a string of 0x and at most 8 "
     "hexadecimal "
     "digits, or \"\" for null (--unchecked sends it anyway)\n"},
    {{"send", "channel.GetName", "0x100000000"}, "channel.GetName: member \"c_handle\" is \"0x100000000\": expected"},
    {{"send", "channel.GetName", "c_handle=1", "c_handel=1"},
     "channel.GetName: member \"c_handel\" is unknown; did you mean \"c_handle\"? (--unchecked sends it anyway)\n"},
    {{"send", "channel.GetName", "c_handle=1", "method=14"}, "channel.GetName: member \"method\" is 14: expected 13"},
    {{"send", "channel.SetHidden", "1", "--json", R"({"hidden": 1.5})"},
     "channel.SetHidden: member \"hidden\" is 1.5: expected true or false"},
    {{"send", "channel.SetName", "1", "--json", R"({"name": 3})"},
     "channel.SetName: member \"name\" is 3: expected a string"},
    {{"send", "configuration.SetRegionId", "-1"},
     "configuration.SetRegionId: member \"reg_id\" is -1: expected an integer from 0 to 4294967295"},
    {{"send", "local_system.GetDeviceID", "1", "2"}, "local_system.GetDeviceID: unexpected argument \"1\""},
    {{"send", "video_broadcast.SetSpeed", "1", "fast"},
     "video_broadcast.SetSpeed: member \"speed\" is \"fast\": expected a number"},
    {{"send", "channel_config.CreateChannelList", "channel=1,x,3"},
     "channel_config.CreateChannelList: member \"channel1\" is \"x\": expected a handle"},
    {{"send", "channel_config.CreateChannelList", "channel=1", "size=2"},
     "channel_config.CreateChannelList: member \"channel1\" is missing: expected a handle, a string of 0x and at most "
     "8 "
     "hexadecimal digits, or \"\" for null, as \"size\" is 2"},
    {{"send", "application_manager.CreateApp", "1", "2", "u", "3", "0"},
     "application_manager.CreateApp: member \"child\" is 3: expected at most 1"},
    {{"send", "av_control.ComponentUpdate", "1", "2", "0", "[]"},
     "av_control.ComponentUpdate: member \"components\" has 0 elements: expected 2, the value of \"component_count\""},
    {{"send", "av_control.ComponentUpdate", "1", "1", "0", "[3]"},
     "av_control.ComponentUpdate: member \"components[0]\" is 3: expected an object"},
    {{"emit", "channel_config", "changed"},
     "channel_config event changed: member \"reserved\" is missing: expected a string (--unchecked sends it anyway)\n"},
    {{"emit", "video_broadcast", "mediasync:2", "bTimelineOptionsChange=false", "bContentIdChange=false",
      "bMrsUrlChange=false", "mrsUrl=x"},
     "video_broadcast event content: member \"mrsUrl\" is present: expected only if \"bMrsUrlChange\" is true"},
    {{"emit", "video_broadcast", "1", "state=2"},
     "video_broadcast event TOLM_VB_EVENT_PLAY_STATE: member \"error\" is missing"},
    {{"emit", "configuration", "0", "w=wide"},
     "configuration event resolution:\n  member \"w\" is \"wide\": expected an integer from 0 to 4294967295\n  member "
     "\"h\" is missing: expected an integer from 0 to 4294967295\n(--unchecked sends it anyway)\n"},
};

TEST_F(Alone, SendAndEmitRefuseWhatTheProtocolDoesNotHave) {
    for (const Wrong& wrong : kWrong) {
        const FinishedRun run = Ctl(wrong.arguments);
        EXPECT_EQ(run.exit, 2) << wrong.problem << run.Text();
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.errors, testing::StartsWith("hbbtvctl: " + wrong.problem));
    }
}

TEST_F(Send, WritesWrongMembersUncheckedAsTheyAre) {
    const FinishedRun run =
        Ctl({"send", "channel.GetName", "c_handle=K\xc3\xb6ln", "method=99", "more=[1]", "text=abc", "--unchecked"});
    ASSERT_EQ(mChannel.Frames().size(), 1u) << run.Text();
    EXPECT_EQ(mChannel.Frames()[0].payload,
              "{\n\t\"c_handle\" : \"K\\u00f6ln\",\n\t\"method\" : 99,\n\t\"more\" : \n\t[\n\t\t1\n\t],\n"
              "\t\"text\" : \"abc\",\n\t\"type\" : 12\n}\n");
    ASSERT_EQ(Ctl({"send", "channel.GetName", "--unchecked"}).exit, 0);
    EXPECT_EQ(mChannel.Frames()[1].payload, "{\n\t\"method\" : 13,\n\t\"type\" : 12\n}\n");
    ASSERT_EQ(Ctl({"send", "channel.GetName", "--json", R"({"c_handle": [4096]})", "--unchecked"}).exit, 0);
    EXPECT_THAT(mChannel.Frames()[2].payload, HasSubstr("\"c_handle\" : \n\t[\n\t\t4096\n\t],"));
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
    EXPECT_EQ(frame->type, kOneWay);
    EXPECT_EQ(frame->port, 7);
    EXPECT_EQ(frame->payload,
              "{\n\t\"context\" : \"0xc0de\",\n\t\"error\" : 0,\n\t\"event\" : 1,\n\t\"state\" : 2,\n"
              "\t\"type\" : \"videobroadcast\"\n}\n");
    EXPECT_EQ(ctl.WaitForExit(), 0);
    EXPECT_EQ(ctl.Output(), "sent; no reply expected\n");
}

TEST_F(Emit, WritesAnEventThatRequestsAReplyAndPrintsIt) {
    CtlProcess ctl({"emit", "video_broadcast", "videobroadcast:1", "--request", "--unchecked"});
    RawConnection connection = mSocket.Accept();
    const std::optional<Frame> frame = connection.ReadFrame();
    ASSERT_TRUE(frame.has_value());
    EXPECT_EQ(frame->type, kRequest);
    EXPECT_EQ(frame->payload, "{\n\t\"event\" : 1,\n\t\"type\" : \"videobroadcast\"\n}\n") << "only the given members";
    connection.Write(FrameBytes(kReply, 7, R"({"ret": 0})"));
    EXPECT_EQ(ctl.WaitForExit(), 0);
    EXPECT_EQ(ctl.Output(), "ret  0\n");
}

class EmitToTheLibrary : public InFrontOfTheSystem {};

TEST_F(EmitToTheLibrary, ReachesTheClientByCodeNameAndMethod) {
    Listener listener({"channel_config"});
    ASSERT_TRUE(listener.Listens());
    for (const char* event : {"0", "changed", "OnChannelConfigEvent"}) {
        const FinishedRun run = Ctl({"emit", "channel_config", event, "reserved=A"});
        EXPECT_EQ(run.output, "sent; no reply expected\n") << event << run.errors;
    }
    ASSERT_TRUE(listener.WaitForEvents(3)) << listener.Output();
    EXPECT_EQ(listener.Events()[2]["arguments"]["info"]["reserved"].asInt(), 65);
}

TEST_F(EmitToTheLibrary, FailsIfNoClientReceivesIt) {
    // The library has opened its socket, but has no client.
    ASSERT_EQ(Ctl({"listen", "channel_config", "video_broadcast", "--for", "1ms"}).exit, 0);
    const FinishedRun run = Ctl({"emit", "channel_config", "changed", "reserved=A", "--request"});
    EXPECT_EQ(run.exit, 3);
    EXPECT_EQ(
        run.errors,
        "hbbtvctl: " +
            mDirectory /
                "service_hbbtv_to_plugin_vb_chn_config: channel_config event changed was not delivered: no client is "
                "registered, the context differs, or the family accepts it only without a reply (--one-way)\n");
    EXPECT_EQ(Ctl({"emit", "video_broadcast", "17", "--request"}).exit, 3);
}

TEST_F(EmitToTheLibrary, SurvivesRawBytes) {
    ASSERT_EQ(Ctl({"listen", "channel_config", "--for", "1ms"}).exit, 0);
    const FinishedRun run =
        Ctl({"emit", "channel_config", "--raw", "no message at all, by no means", "--timeout", "100ms"});
    EXPECT_EQ(run.exit, 0) << run.Text();
    EXPECT_EQ(run.output, "no reply\n");
    const FinishedRun empty = Ctl({"emit", "channel_config", "--raw", "", "--timeout", "100ms"});
    EXPECT_EQ(empty.exit, 0) << empty.Text();
    EXPECT_EQ(empty.output, "no reply\n") << "zero bytes are valid";
    EXPECT_EQ(Ctl({"call", "IChannelConfig.GetCurrentChannel"}).exit, 0);
}

}  // namespace

}  // namespace hbbtv::test
