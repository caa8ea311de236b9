// Video/broadcast events that the platform sends as requests: whom they reach, and the bytes of the reply.

#include "lenient_readings.h"
#include "rows.h"
#include "video_broadcast_events_fixture.h"
#include "written_json.h"

namespace hbbtv::test {

namespace {

using Lines = std::vector<std::string>;

constexpr char kTaken[] = "{\n\t\"ret\" : 0\n}\n";
constexpr char kRefused[] = "null\n";

const Lines kHandled = {"2 ENTER", "2 LEAVE"};
const Lines kAssertionFailed = {"2 ENTER", "5 VB_Assert_Ret failed!"};

class VideoBroadcastEventAsARequest : public EventRowTest {};
class VideoBroadcastEventRequests : public EventsFixture {};

}  // namespace

TEST_P(VideoBroadcastEventAsARequest, IsTakenWithoutItsPayload) {
    Register(Pointer(0xabcd));
    RegisterMediaSync(Pointer(0xabcd));
    const bool mediaSync = GetParam().object == "mediasync";
    EXPECT_EQ(Ask(GetParam().event), kTaken);
    EXPECT_EQ(AdaptorLines(), kHandled);
    const std::vector<ReceivedEvent> received = Received();
    ASSERT_EQ(received.size(), mediaSync ? 0u : 1u);
    if (mediaSync) return;
    EXPECT_EQ(received[0].receiver, "videobroadcast");
    EXPECT_EQ(received[0].code, GetParam().code);
    EXPECT_TRUE(received[0].allZero);
    EXPECT_EQ(received[0].context, Pointer(0xabcd));
}

INSTANTIATE_TEST_SUITE_P(Each, VideoBroadcastEventAsARequest, ::testing::ValuesIn(EventRows()), NameOfEvent);

TEST_F(VideoBroadcastEventRequests, OfAnyCodeAreTaken) {
    Register(Pointer(0xabcd));
    const std::vector<int> codes = {17, 18, 19, 20, 21, 22, 23, -1, 2147483647, -2147483647 - 1};
    for (const int code : codes) {
        SCOPED_TRACE(code);
        EXPECT_EQ(
            Ask("{\"type\": \"videobroadcast\", \"context\": \"0xabcd\", \"event\": " + std::to_string(code) + "}"),
            kTaken);
        EXPECT_EQ(AdaptorLines(), kHandled);
        EXPECT_EQ(Received().back().code, code);
        EXPECT_TRUE(Received().back().allZero);
    }
    EXPECT_EQ(Received().size(), codes.size());
}

TEST_F(VideoBroadcastEventRequests, WithoutARowAreNamedByTheProtocol) {
    const Json::Value& protocol = UnderTest().Wire().protocol;
    std::vector<int> codes;
    for (const Json::Value& event : protocol["events"]) {
        if (event["forms"][0] == "request") codes.push_back(event["code"].asInt());
    }
    EXPECT_EQ(codes, (std::vector<int>{17, 18, 19, 21, 22}));
}

TEST_F(VideoBroadcastEventRequests, HaveTheirCodeReadLeniently) {
    Register(Pointer(0xabcd));
    for (const Reading& reading : ReadingsOf("int", "")) {
        SCOPED_TRACE(reading.json);
        EXPECT_EQ(Ask(WithMember("{\"type\": \"videobroadcast\", \"context\": \"0xabcd\"}", "event", reading.json)),
                  kTaken);
        EXPECT_EQ(std::to_string(Received().back().code), reading.shown);
    }
}

TEST_F(VideoBroadcastEventRequests, AreRefusedIfTheContextIsNotAString) {
    Register(Pointer(0xabcd));
    for (const char* type : {"\"videobroadcast\"", "\"mediasync\"", "\"other\"", "", "3"}) {
        for (const char* context : {"", "null", "true", "43981", "43981.5", "[\"0xabcd\"]", "{\"a\": \"0xabcd\"}"}) {
            SCOPED_TRACE(std::string(type) + " " + context);
            EXPECT_EQ(Ask(WithMember(WithMember("{\"event\": 4}", "type", type), "context", context)), kRefused);
            EXPECT_EQ(AdaptorLines(), kAssertionFailed);
        }
    }
    EXPECT_TRUE(Received().empty());
}

TEST_F(VideoBroadcastEventRequests, WithAnotherContextAreRefused) {
    Register(Pointer(0xabcd));
    for (const char* context : {"0xabce", "0x1abcd", "", "text", "0xffffffff"}) {
        SCOPED_TRACE(context);
        EXPECT_EQ(Ask(std::string("{\"type\": \"videobroadcast\", \"event\": 4, \"context\": \"") + context + "\"}"),
                  kRefused);
        EXPECT_EQ(AdaptorLines(), kAssertionFailed);
    }
    EXPECT_TRUE(Received().empty());
    EXPECT_EQ(Ask("{\"type\": \"videobroadcast\", \"event\": 4, \"context\": \"0xabcd\"}"), kTaken);
    EXPECT_EQ(Received().size(), 1u);
}

TEST_F(VideoBroadcastEventRequests, WithoutAReceiverAreRefused) {
    EXPECT_EQ(Ask("{\"type\": \"videobroadcast\", \"event\": 4, \"context\": \"0xabcd\"}"), kRefused);
    EXPECT_EQ(Ask("{\"type\": \"videobroadcast\", \"event\": 4, \"context\": \"\"}"), kRefused);
    EXPECT_EQ(AdaptorLines(), (Lines{"2 ENTER", "5 VB_Assert_Ret failed!", "2 ENTER", "5 VB_Assert_Ret failed!"}));
}

TEST_F(VideoBroadcastEventRequests, ForAReceiverWithoutAContextAreRefused) {
    Register(nullptr);
    for (const char* context : {"", "0x0", "(nil)", "0xabcd"}) {
        EXPECT_EQ(Ask(std::string("{\"type\": \"videobroadcast\", \"event\": 4, \"context\": \"") + context + "\"}"),
                  kRefused);
        EXPECT_EQ(AdaptorLines(), kAssertionFailed);
    }
    EXPECT_TRUE(Received().empty());
}

TEST_F(VideoBroadcastEventRequests, OfAnotherObjectAreTakenAndIgnored) {
    RegisterMediaSync(Pointer(0xabcd));
    for (const char* type : {"\"mediasync\"", "\"other\"", "\"\"", "", "null", "3", "[]", "{}", "\"VIDEOBROADCAST\""}) {
        SCOPED_TRACE(type);
        EXPECT_EQ(Ask(WithMember("{\"event\": 4, \"context\": \"0xabcd\"}", "type", type)), kTaken);
        EXPECT_EQ(AdaptorLines(), kHandled);
        EXPECT_EQ(Ask(WithMember("{\"context\": \"\"}", "type", type)), kTaken);
        EXPECT_EQ(AdaptorLines(), kHandled);
    }
    EXPECT_TRUE(Received().empty());
}

TEST_F(VideoBroadcastEventRequests, ReadTheContextAsAPointer) {
    Register(Pointer(0x8000abcd));
    for (const char* context : {"0x8000abcd", "0x8000ABCD", "8000abcd", " 0x8000abcd", "0x000000008000abcd"}) {
        EXPECT_EQ(Ask(std::string("{\"type\": \"videobroadcast\", \"event\": 4, \"context\": \"") + context + "\"}"),
                  kTaken)
            << context;
    }
}

TEST_F(VideoBroadcastEventRequests, GetAnEmptyReplyIfTheyAreNotObjects) {
    Register(Pointer(0xabcd));
    for (const char* text : {"nonsense", "null", "[]", "7", " ", "{\"type\":"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Ask(text), "");
        EXPECT_EQ(LinesOf("[ipc_base]"), (Lines{"5 Ipc2Json failed"}));
        EXPECT_TRUE(AdaptorLines().empty());
    }
    EXPECT_EQ(Ask("{\"type\": \"videobroadcast\", \"event\": 4, \"context\": \"0xabcd\"}"), kTaken);
}

TEST_F(VideoBroadcastEventRequests, ForAnotherPortGetAnEmptyReply) {
    Register(Pointer(0xabcd));
    EXPECT_EQ(Ask("{\"type\": \"videobroadcast\", \"event\": 4, \"context\": \"0xabcd\"}", 8), "");
    EXPECT_EQ(LinesOf("[ipc_base]"), (Lines{"5 channel(32) port(8): no receiver"}));
    EXPECT_TRUE(Received().empty());
}

TEST_F(VideoBroadcastEventRequests, AreLoggedWithBothDocuments) {
    AdaptorLines();
    EXPECT_EQ(Ask("{\"type\": \"other\", \"context\": \"\"}"), kTaken);
    EXPECT_EQ(Ask("{\"type\": \"other\"}"), kRefused);
    EXPECT_EQ(LinesOf("[ipc_base]"),
              (Lines{"3 recv msg:{\n\t\"context\" : \"\",\n\t\"type\" : \"other\"\n}\n"
                     " and out_msg:{\n\t\"ret\" : 0\n}\n in m_ipc_id(32) port(7)",
                     "3 recv msg:{\n\t\"type\" : \"other\"\n}\n and out_msg:null\n in m_ipc_id(32) port(7)"}));
}

}  // namespace hbbtv::test
