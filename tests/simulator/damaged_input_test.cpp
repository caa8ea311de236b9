// Whatever a client sends, the simulator answers or drops it, and goes on serving everybody.
#include <algorithm>

#include "simulated_platform.h"

namespace hbbtv::test {
namespace {

class DamagedInput : public SimulatedPlatform {
  protected:
    void SetUp() override { Start({"--tune-time", "0ms"}); }

    // Every test ends here: the process lives, and an untouched client is served.
    void TearDown() override {
        RawClient another(mRequestSocket);
        ASSERT_TRUE(another.Connected());
        another.Send(2, 7, R"({"type": 3, "method": 0, "context": "0x1"})");
        const auto reply = another.Receive();
        ASSERT_TRUE(reply.has_value()) << mSimulator->Output();
        EXPECT_EQ(Parsed(reply->payload)["ret"], 0);
        EXPECT_EQ(Stop(), 0);
    }

    // What the simulator replies to this text.
    Json::Value ReplyTo(const std::string& text) { return AnswerTo(kToVideoBroadcast, text); }
};

class DamagedText : public DamagedInput, public testing::WithParamInterface<const char*> {};

TEST_P(DamagedText, GetsAReplyOfMinusOneAndNothingElse) {
    const Json::Value reply = ReplyTo(GetParam());
    EXPECT_EQ(reply["ret"], -1);
    EXPECT_EQ(reply.size(), 1u);
    EXPECT_TRUE(mSimulator->WaitForOutput("refused")) << "one log line says why";
}

INSTANTIATE_TEST_SUITE_P(
    Every, DamagedText,
    testing::Values("", " ", "{", "nonsense", "{\"type\": 3, \"method\": 0, \"context\": \"0x1\"} behind", "null", "[]",
                    "[3, 0]", "3", "\"text\"", "{}", "{\"type\": 3}", "{\"method\": 0}",
                    "{\"type\": 4, \"method\": 0, \"context\": \"0x1\"}",
                    "{\"type\": \"3\", \"method\": 0, \"context\": \"0x1\"}", "{\"type\": 3, \"method\": \"0\"}",
                    "{\"type\": 3, \"method\": 34}", "{\"type\": 3, \"method\": -1}",
                    "{\"type\": 3, \"method\": 4294967296}", "{\"type\": 3, \"method\": 1e300}",
                    "{\"type\": 3, \"method\": null}", "{\"type\": 3, \"method\": {}}", "{\"type\": 3, \"method\": 0}",
                    "{\"type\": 3, \"method\": 0, \"context\": 17}",
                    "{\"type\": 3, \"method\": 0, \"context\": \"no handle\"}",
                    "{\"type\": 3, \"method\": 7, \"vb_handle\": {\"a\": []}}",
                    "{\"type\": 3, \"method\": 63, \"source\": 99999999999999999999}", "\xff\xfe\x80"));

TEST_F(DamagedInput, TextsThatAreKeptEndAt256KiB) {
    const std::string vb = ObjectIn("presenting");
    const std::string most(256 << 10, 'x');
    for (const auto& [text, ret] : {std::pair(most, 0), std::pair(most + "x", -1)}) {
        EXPECT_EQ(RetOf(vb, kCreateChannel1, {{"idType", 11}, {"dsd", text}, {"sid", 1}}), ret);
        EXPECT_EQ(RetOf(vb, kCreateVideoComponent, {{"componentTag", 1}, {"aspectRatio", 1.78}, {"encoding", text}}),
                  ret);
        EXPECT_EQ(Ret(kAddStreamEventListener, {{"strurl", "dvb://1.1.1/e"}, {"dvburl", ""}, {"event_name", text}}),
                  ret);
    }
}

TEST_F(DamagedInput, ANestingBombGetsMinusOne) {
    for (const char* open : {"[", "{\"a\":"}) {
        std::string bomb;
        for (int i = 0; i < 100000; ++i) bomb += open;
        EXPECT_EQ(ReplyTo(bomb)["ret"], -1);
        EXPECT_EQ(ReplyTo("{\"type\": 3, \"method\": 0, \"context\": " + bomb)["ret"], -1);
    }
}

TEST_F(DamagedInput, AMemberThatNobodyKnowsIsNoDamage) {
    EXPECT_EQ(ReplyTo(R"({"type": 3, "method": 0, "context": "0x1", "more": [1, {"x": null}]})")["ret"], 0);
}

TEST_F(DamagedInput, ALargeMessageWithinTheLimitIsRead) {
    const std::string url(3000000, 'u');
    const std::string vb = NewObject();
    EXPECT_EQ(AskOf(vb, kSetChannel, {{"channel", Channel(vb, 1)}, {"trickPlay", false}, {"url", url}})["ret"], 0);
}

TEST_F(DamagedInput, AHugeAnnouncedSizeClosesTheConnectionWithoutWaitingForTheBytes) {
    for (const uint32_t size : {0xffffffffu, 0x80000000u, 4194305u}) {
        RawClient client(mRequestSocket);
        client.SendBytes(HeaderBytes(size, 2, 7) + "{}");
        EXPECT_TRUE(client.SeesClose()) << size;
    }
    EXPECT_TRUE(mSimulator->WaitForOutput("announces 4294967295 bytes"));
}

TEST_F(DamagedInput, AnAnnouncedSizeTakesNoMemoryAheadOfItsBytes) {
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 200; ++i) {
        clients.push_back(std::make_unique<RawClient>(mRequestSocket));
        clients.back()->SendBytes(HeaderBytes(4194304, 2, 7) + "{");  // 200 times the largest size: 800 MB
    }
    EXPECT_EQ(Ask(kCreate, {{"context", "0x1"}})["ret"], 0);
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
    const std::string text = R"({"type": 3, "method": 0, "context": "0x1"})";
    const std::string bytes = FrameBytes(2, 7, text);
    for (const char byte : bytes) Client().SendBytes(std::string(1, byte));
    const auto reply = Client().Receive();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(Parsed(reply->payload)["ret"], 0);
}

TEST_F(DamagedInput, APeerThatLeavesInTheMiddleOfAFrameIsLogged) {
    for (const size_t length : {1u, 11u, 12u, 20u}) {
        RawClient client(mRequestSocket);
        client.SendBytes((HeaderBytes(100, 2, 7) + std::string(50, ' ')).substr(0, length));
    }
    EXPECT_TRUE(mSimulator->WaitForOutput("left in the middle of a message"));
}

TEST_F(DamagedInput, APeerThatStopsSendingStillGetsItsReplies) {
    Client().Send(2, 7, R"({"type": 3, "method": 0, "context": "0x1"})");
    Client().CloseSending();
    ASSERT_TRUE(Client().Receive().has_value());
    EXPECT_TRUE(Client().SeesClose());
}

TEST_F(DamagedInput, APeerThatLeavesWithoutReadingItsRepliesDisturbsNobody) {
    RawClient client(mRequestSocket);
    for (int i = 0; i < 2000; ++i) client.Send(2, 7, "nonsense");
}

TEST_F(DamagedInput, OtherMessageTypesAreReadAndDropped) {
    for (const int type : {0, 3, 4, -1, 0x7fffffff}) {
        Client().Send(type, 7, R"({"type": 3, "method": 0, "context": "0x1"})");
    }
    EXPECT_EQ(Ask(kCreate, {{"context", "0x1"}})["ret"], 0) << "the next reply is that of the next request";
}

TEST_F(DamagedInput, AOneWayMessageIsCarriedOutWithoutAReply) {
    const std::string vb = NewObject();
    Client().Send(1, 7, R"({"type": 3, "method": 15, "vb_handle": ")" + vb + R"(", "volume": 33})");
    Client().Send(1, 7, "nonsense");
    EXPECT_EQ(AskOf(vb, kGetVolume)["volume"], 33);
}

TEST_F(DamagedInput, TheReplyEchoesWhateverPortTheRequestCarried) {
    for (const int port : {0, 7, -5, 0x7fffffff}) {
        Client().Send(2, port, R"({"type": 3, "method": 0, "context": "0x1"})");
        const auto reply = Client().Receive();
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->type, 3);
        EXPECT_EQ(reply->port, port);
    }
}

TEST_F(DamagedInput, RequestsThatArriveTogetherAreAnsweredInOrder) {
    std::string bytes;
    const std::string text = R"({"type": 3, "method": 0, "context": "0x1"})";
    for (int port = 0; port < 50; ++port) bytes += FrameBytes(2, port, text);
    Client().SendBytes(bytes);
    for (int port = 0; port < 50; ++port) {
        const auto reply = Client().Receive();
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->port, port);
    }
}

TEST_F(DamagedInput, ManyConnectionsAreServedAtOnce) {
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 100; ++i) clients.push_back(std::make_unique<RawClient>(mRequestSocket));
    for (const auto& client : clients) client->Send(2, 7, R"({"type": 3, "method": 0, "context": "0x1"})");
    for (const auto& client : clients) EXPECT_TRUE(client->Receive().has_value());
}

TEST_F(DamagedInput, EveryRequestWithoutItsMembersIsRefusedAndNoneEndsTheProcess) {
    // Those that need none of their own.
    const std::vector<int> noMembers{kCreateProgrammeList};
    for (int method = -1; method < 70; ++method) {
        const bool good = std::count(noMembers.begin(), noMembers.end(), method) > 0;
        EXPECT_EQ(Ret(method), good ? 0 : -1) << method;
    }
}

TEST_F(DamagedInput, MembersOfEveryOtherTypeAreRefused) {
    const std::string vb = NewObject();
    const std::vector<Json::Value> wrong{Json::Value(), Json::Value(Json::arrayValue), Json::Value(Json::objectValue)};
    const std::map<int, const char*> members{{kSetVolume, "volume"},          {kSetFullScreen, "fullscreen"},
                                             {kSetTimeShiftMode, "mode"},     {kSetSpeed, "speed"},
                                             {kGetPlaySpeedByIndex, "index"}, {kGetComponentNum, "comType"},
                                             {kSelectComponent, "component"}, {kRegisterCallback, "context"}};
    for (const auto& member : members) {
        for (const Json::Value& value : wrong) EXPECT_EQ(RetOf(vb, member.first, {{member.second, value}}), -1);
    }
}

}  // namespace
}  // namespace hbbtv::test
