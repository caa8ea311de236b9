// Whatever a client sends, the simulator answers or drops it and continues to serve everybody.
#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {
namespace {

class DamagedInput : public VideoBroadcastFixture {
  protected:
    void SetUp() override { Start(); }

    // Every test ends with the process alive and an untouched client served.
    void TearDown() override {
        RawClient another(RequestSocket());
        ASSERT_TRUE(another.Connected());
        SendCreate(another);
        const auto reply = another.Receive();
        ASSERT_TRUE(reply.has_value()) << mSimulator->Output();
        EXPECT_EQ(Parsed(reply->payload)["ret"], 0);
        EXPECT_EQ(Stop(), 0);
    }

    std::string CreateText() const { return RequestText("Create", {{"context", "0x1"}}); }

    void SendCreate(RawClient& client, int type = kRequest, int port = RequestPort()) const {
        client.Send(type, port, CreateText());
    }

    // Returns a request with this text as the value of a member.
    std::string TextWith(const std::string& operation, const std::string& member, const std::string& value) const {
        std::string text = RequestText(operation, {{member, "VALUE"}});
        return text.replace(text.find("\"VALUE\""), 7, value);
    }

    Json::Value ReplyTo(const std::string& text) { return AnswerTo("video_broadcast", text); }

    void ExpectRefusedWithALogLine(const std::string& text) {
        const Json::Value reply = ReplyTo(text);
        EXPECT_EQ(reply["ret"], -1);
        EXPECT_EQ(reply.size(), 1u);
        EXPECT_TRUE(mSimulator->WaitForOutput("refused")) << "one log line says why";
    }
};

// In the text, TYPE and CREATE stand for the members of the envelope of a Create request, TYPE_KEY and CODE_KEY for
// their keys.
class DamagedText : public DamagedInput, public testing::WithParamInterface<const char*> {
  protected:
    std::string Text() const {
        const Json::Value& envelope = FindFamily("video_broadcast").protocol["envelope"];
        const std::string type = "\"" + envelope["type"]["key"].asString() + "\"";
        const std::string code = "\"" + envelope["code"]["key"].asString() + "\"";
        const Json::Value create = Operation("video_broadcast.Create").Request({});
        std::string text = GetParam();
        for (const auto& [word, replacement] : std::vector<std::pair<std::string, std::string>>{
                 {"TYPE_KEY", type},
                 {"CODE_KEY", code},
                 {"TYPE", type + ": " + envelope["type"]["value"].asString()},
                 {"CREATE", code + ": " + create[envelope["code"]["key"].asString()].asString()}}) {
            const size_t at = text.find(word);
            if (at != std::string::npos) text.replace(at, word.size(), replacement);
        }
        return text;
    }
};

TEST_P(DamagedText, GetsAReplyOfMinusOneAndNothingElse) {
    ExpectRefusedWithALogLine(Text());
}

INSTANTIATE_TEST_SUITE_P(Every, DamagedText,
                         testing::Values("", " ", "{", "nonsense", R"({TYPE, CREATE, "context": "0x1"} behind)", "null",
                                         "[]", "[3, 0]", "3", "\"text\"", "{}", "{TYPE}", "{CREATE}",
                                         R"({TYPE_KEY: 4, CREATE, "context": "0x1"})",
                                         R"({TYPE_KEY: "3", CREATE, "context": "0x1"})", R"({TYPE, CODE_KEY: "0"})",
                                         "{TYPE, CODE_KEY: 34}", "{TYPE, CODE_KEY: -1}", "{TYPE, CODE_KEY: 4294967296}",
                                         "{TYPE, CODE_KEY: 1e300}", "{TYPE, CODE_KEY: null}", "{TYPE, CODE_KEY: {}}",
                                         "{TYPE, CREATE}", R"({TYPE, CREATE, "context": 17})",
                                         R"({TYPE, CREATE, "context": "no handle"})", "\xff\xfe\x80"));

TEST_F(DamagedInput, AnObjectAsAHandleIsRefused) {
    ExpectRefusedWithALogLine(TextWith("GetPlayState", "vb_handle", R"({"a": []})"));
}

TEST_F(DamagedInput, ANumberOfMoreThan64BitsIsRefused) {
    ExpectRefusedWithALogLine(TextWith("ChangeDisplaySource", "source", "99999999999999999999"));
}

TEST_F(DamagedInput, StoredStringsAreLimitedTo256KiB) {
    const std::string vb = ObjectIn("presenting");
    const std::string most(256 << 10, 'x');
    for (const auto& [text, ret] : {std::pair(most, 0), std::pair(most + "x", -1)}) {
        EXPECT_EQ(RetOf(vb, "CreateChannel_1", {{"idType", 11}, {"dsd", text}, {"sid", 1}}), ret);
        EXPECT_EQ(RetOf(vb, "CreateVideoComponent", {{"componentTag", 1}, {"aspectRatio", 1.78}, {"encoding", text}}),
                  ret);
        EXPECT_EQ(Ret("AddStreamEventListener", {{"strurl", "dvb://1.1.1/e"}, {"dvburl", ""}, {"event_name", text}}),
                  ret);
    }
}

TEST_F(DamagedInput, DeepNestingGetsMinusOne) {
    for (const char* open : {"[", "{\"a\":"}) {
        std::string bomb;
        for (int i = 0; i < 100000; ++i) bomb += open;
        EXPECT_EQ(ReplyTo(bomb)["ret"], -1);
        EXPECT_EQ(ReplyTo(TextWith("Create", "context", bomb))["ret"], -1);
    }
}

TEST_F(DamagedInput, AnUnknownMemberIsIgnored) {
    EXPECT_EQ(AskRaw("Create", {{"context", "0x1"}, {"more", Parsed(R"([1, {"x": null}])")}})["ret"], 0);
}

TEST_F(DamagedInput, ALargeMessageWithinTheLimitIsRead) {
    const std::string url(3000000, 'u');
    const std::string vb = NewObject();
    EXPECT_EQ(RetOf(vb, "SetChannel", {{"channel", Channel(vb, 1)}, {"trickPlay", false}, {"url", url}}), 0);
}

TEST_F(DamagedInput, AHugeAnnouncedSizeClosesTheConnectionWithoutWaitingForTheBytes) {
    for (const uint32_t size : {0xffffffffu, 0x80000000u, 4194305u}) {
        RawClient client(RequestSocket());
        client.SendBytes(HeaderBytes(size, kRequest, RequestPort()) + "{}");
        EXPECT_TRUE(client.SeesClose()) << size;
    }
    EXPECT_TRUE(mSimulator->WaitForOutput("announces 4294967295 bytes"));
}

TEST_F(DamagedInput, AnAnnouncedSizeTakesNoMemoryBeforeItsBytesArrive) {
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 200; ++i) {
        clients.push_back(std::make_unique<RawClient>(RequestSocket()));
        clients.back()->SendBytes(HeaderBytes(4194304, kRequest, RequestPort()) +
                                  "{");  // 200 times the largest size: 800 MB
    }
    EXPECT_EQ(RetOf("0x1", "Create"), 0);
    std::string line;
    FILE* file = fopen(("/proc/" + std::to_string(mSimulator->Pid()) + "/statm").c_str(), "r");
    ASSERT_NE(file, nullptr);
    unsigned long pages = 0;
    unsigned long resident = 0;
    EXPECT_EQ(fscanf(file, "%lu %lu", &pages, &resident), 2);
    fclose(file);
    EXPECT_LT(resident * 4096 / 1000000, 400u) << "megabytes";
}

TEST_F(DamagedInput, HalfAFrameIsWaitedForAndThenReadAsOne) {
    const std::string text = CreateText();
    const std::string bytes = FrameBytes(kRequest, RequestPort(), text);
    for (const char byte : bytes) ClientOf().SendBytes(std::string(1, byte));
    const auto reply = ClientOf().Receive();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(Parsed(reply->payload)["ret"], 0);
}

TEST_F(DamagedInput, APeerThatLeavesInTheMiddleOfAFrameIsLogged) {
    for (const size_t length : {1u, 11u, 12u, 20u}) {
        RawClient client(RequestSocket());
        client.SendBytes((HeaderBytes(100, kRequest, RequestPort()) + std::string(50, ' ')).substr(0, length));
    }
    EXPECT_TRUE(mSimulator->WaitForOutput("disconnected in the middle of a message"));
}

TEST_F(DamagedInput, APeerThatStopsSendingStillGetsItsReplies) {
    SendCreate(ClientOf());
    ClientOf().CloseSending();
    ASSERT_TRUE(ClientOf().Receive().has_value());
    EXPECT_TRUE(ClientOf().SeesClose());
}

TEST_F(DamagedInput, APeerThatLeavesWithoutReadingItsRepliesAffectsNoOther) {
    RawClient client(RequestSocket());
    // Few enough that the buffers of both sides hold them: the client must not block.
    for (int i = 0; i < 100; ++i) client.Send(kRequest, RequestPort(), "nonsense");
}

TEST_F(DamagedInput, OtherMessageTypesAreReadAndDropped) {
    for (const int type : {0, 3, 4, -1, 0x7fffffff}) {
        SendCreate(ClientOf(), type);
    }
    EXPECT_EQ(RetOf("0x1", "Create"), 0) << "the next reply is that of the next request";
}

TEST_F(DamagedInput, AOneWayMessageIsCarriedOutWithoutAReply) {
    const std::string vb = NewObject();
    SendOf(vb, "SetVolume", {{"volume", 33}});
    ClientOf().Send(kOneWay, RequestPort(), "nonsense");
    EXPECT_EQ(GetOf(vb, "GetVolume"), 33);
}

TEST_F(DamagedInput, TheReplyEchoesWhateverPortTheRequestCarried) {
    for (const int port : {0, 7, -5, 0x7fffffff}) {
        SendCreate(ClientOf(), kRequest, port);
        const auto reply = ClientOf().Receive();
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->type, 3);
        EXPECT_EQ(reply->port, port);
    }
}

TEST_F(DamagedInput, RequestsThatArriveTogetherAreAnsweredInOrder) {
    std::string bytes;
    const std::string text = CreateText();
    for (int port = 0; port < 50; ++port) bytes += FrameBytes(kRequest, port, text);
    ClientOf().SendBytes(bytes);
    for (int port = 0; port < 50; ++port) {
        const auto reply = ClientOf().Receive();
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->port, port);
    }
}

TEST_F(DamagedInput, ManyConnectionsAreServedAtOnce) {
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 100; ++i) clients.push_back(std::make_unique<RawClient>(RequestSocket()));
    for (const auto& client : clients) SendCreate(*client);
    for (const auto& client : clients) EXPECT_TRUE(client->Receive().has_value());
}

TEST_F(DamagedInput, EveryRequestWithoutItsMembersIsRefusedAndNoneEndsTheProcess) {
    ExpectRequestsRefused(Without(OperationsOf("video_broadcast"), {"video_broadcast.CreateProgrammeList"}));
    ExpectOtherCodesRefused("video_broadcast");
    EXPECT_EQ(Ret("CreateProgrammeList"), 0) << "has no members";
}

TEST_F(DamagedInput, MembersOfEveryOtherTypeAreRefused) {
    const std::string vb = NewObject();
    const std::vector<Json::Value> wrong{Json::Value(), Json::Value(Json::arrayValue), Json::Value(Json::objectValue)};
    const std::map<std::string, const char*> members{
        {"SetVolume", "volume"},          {"SetFullScreen", "fullscreen"},
        {"SetTimeShiftMode", "mode"},     {"SetSpeed", "speed"},
        {"GetPlaySpeedByIndex", "index"}, {"GetAVComponentNumByType", "comType"},
        {"SelectComponent", "component"}, {"RegisterCallback", "context"}};
    for (const auto& member : members) {
        for (const Json::Value& value : wrong) EXPECT_EQ(RetOf(vb, member.first, {{member.second, value}}), -1);
    }
}

}  // namespace
}  // namespace hbbtv::test
