// One-way events of the video/broadcast endpoint: every row, what becomes of members that are not as they should be,
// and the lines in the log.

#include <cstring>

#include "lenient_readings.h"
#include "rows.h"
#include "video_broadcast_events_fixture.h"
#include "wire/endpoint.h"
#include "written_json.h"

namespace hbbtv::test {

namespace {

using Lines = std::vector<std::string>;

const Lines kHandled = {"2 ENTER", "2 LEAVE"};

class VideoBroadcastEvent : public EventRowTest {};
class VideoBroadcastEvents : public EventsFixture {};

}  // namespace

TEST_P(VideoBroadcastEvent, ReachesTheReceiver) {
    RegisterForRow(Pointer(0x80c0ffee));
    SendEvent(GetParam().event);
    const std::vector<ReceivedEvent> received = Received();
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].receiver, GetParam().object);
    EXPECT_EQ(received[0].code, GetParam().code);
    EXPECT_EQ(received[0].payload, PayloadOf(GetParam()));
    EXPECT_EQ(received[0].allZero, GetParam().members.empty());
    // The registered context, not the one in the message.
    EXPECT_EQ(received[0].context, Pointer(0x80c0ffee));
    EXPECT_EQ(AdaptorLines(), kHandled);
}

TEST_P(VideoBroadcastEvent, IsReadLeniently) {
    RegisterForRow(Pointer(0x80c0ffee));
    size_t count = 0;
    for (const EventMember& member : GetParam().members) {
        // The text of a stream event has tests of its own.
        if (member.type == "uint") continue;
        for (const Reading& reading : ReadingsOf(member.type, "0x0")) {
            // A text that is given as a pointer to its characters ends at a zero byte.
            const bool cut = GetParam().object == "mediasync" && strstr(reading.json, "\\u0000") != nullptr;
            const std::string shown = cut ? "\"a\"" : reading.shown != nullptr ? reading.shown : "";
            SCOPED_TRACE(member.key + ": " + reading.json);
            SendEvent(WithMember(GetParam().event, member.key, reading.json));
            if (reading.shown == nullptr) {
                EXPECT_EQ(AdaptorLines(), (Lines{"2 ENTER", "6 " + member.complaint}));
                EXPECT_EQ(Received().size(), count);
            } else {
                EXPECT_EQ(AdaptorLines(), kHandled);
                const std::vector<ReceivedEvent> received = Received();
                ASSERT_EQ(received.size(), ++count);
                EXPECT_EQ(received.back().payload, PayloadOf(GetParam(), {{member.key, shown}}));
            }
        }
    }
}

TEST_P(VideoBroadcastEvent, MayLackEverythingButItsHandles) {
    RegisterForRow(Pointer(0x80c0ffee));
    std::string event = GetParam().event;
    std::map<std::string, std::string> shown;
    for (const EventMember& member : GetParam().members) {
        const std::string& type = member.type;
        if (type == "pointer") continue;
        event = WithMember(event, member.key, "");
        shown[member.key] = type == "string" ? "\"\"" : type == "bool" ? "false" : member.key == "text%d" ? "" : "0";
    }
    SendEvent(event);
    const std::vector<ReceivedEvent> received = Received();
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].payload, PayloadOf(GetParam(), shown));
}

TEST_P(VideoBroadcastEvent, MayHaveUnknownMembers) {
    RegisterForRow(Pointer(0x80c0ffee));
    SendEvent(WithMember(WithMember(GetParam().event, "more", "[1, {\"event\": 5}]"), "Event", "9"));
    const std::vector<ReceivedEvent> received = Received();
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].code, GetParam().code);
    EXPECT_EQ(received[0].payload, PayloadOf(GetParam()));
}

TEST_P(VideoBroadcastEvent, IsDroppedWithoutAReceiver) {
    SendEvent(GetParam().event);
    const bool mediaSync = GetParam().object == "mediasync";
    EXPECT_EQ(AdaptorLines(), (Lines{"2 ENTER", mediaSync ? "5 m_cbMS is null" : "5 m_cb is null"}));
    EXPECT_TRUE(Received().empty());
}

INSTANTIATE_TEST_SUITE_P(Each, VideoBroadcastEvent, ::testing::ValuesIn(EventRows()), NameOfEvent);

TEST_F(VideoBroadcastEvents, OfTheProtocolAreTheRowsOfThisTest) {
    const Json::Value& protocol = UnderTest().Wire().protocol;
    std::vector<std::string> expected;
    for (const Json::Value& event : protocol["events"]) {
        if (event["forms"][0] == "one-way") expected.push_back(event["object"].asString() + event["code"].asString());
    }
    std::vector<std::string> rows;
    for (const EventRow& row : EventRows()) rows.push_back(row.object + std::to_string(row.code));
    EXPECT_EQ(rows, expected);
}

TEST_F(VideoBroadcastEvents, NameTheHandlerInTheLog) {
    Register(nullptr);
    mLog.Clear();
    SendEvent("{\"type\": \"videobroadcast\", \"event\": 4}");
    Received();
    std::vector<LogLine> lines;
    for (const LogLine& line : mLog.Lines()) {
        if (line.tag == "[ipc_vb]") lines.push_back(line);
    }
    ASSERT_EQ(lines.size(), 2u);
    for (const LogLine& line : lines) {
        EXPECT_EQ(line.priority, 2);
        EXPECT_EQ(line.file, "tolm_video_broadcast_adaptor_ipc.cpp");
        EXPECT_GT(line.line, 0);
        EXPECT_EQ(line.function, "ReceiveIpc");
    }
}

TEST_F(VideoBroadcastEvents, OfUnknownCodesReachTheReceiverWithAnEmptyRecord) {
    Register(Pointer(0x80c0ffee));
    for (const int code : {17, 18, 19, 20, 21, 22, 23, -1, 2147483647, -2147483647 - 1}) {
        SCOPED_TRACE(code);
        SendEvent("{\"type\": \"videobroadcast\", \"event\": " + std::to_string(code) +
                  ", \"channelHandle\": \"0x5\", \"state\": 3}");
        EXPECT_EQ(AdaptorLines(), (Lines{"2 ENTER", "5 wrong event type " + std::to_string(code), "2 LEAVE"}));
        const ReceivedEvent last = Received().back();
        EXPECT_EQ(last.receiver, "videobroadcast");
        EXPECT_EQ(last.code, code);
        EXPECT_TRUE(last.allZero);
        EXPECT_EQ(last.context, Pointer(0x80c0ffee));
    }
    EXPECT_EQ(Received().size(), 10u);
}

TEST_F(VideoBroadcastEvents, OfUnknownMediaSynchronisationCodesReachTheReceiverWithAnEmptyRecord) {
    RegisterMediaSync(Pointer(0x80c0ffee));
    for (const int code : {6, 20, -1, 2147483647}) {
        SCOPED_TRACE(code);
        SendEvent("{\"type\": \"mediasync\", \"event\": " + std::to_string(code) + ", \"speed\": 3.5}");
        EXPECT_EQ(AdaptorLines(), (Lines{"2 ENTER", "5 wrong event type " + std::to_string(code), "2 LEAVE"}));
        const ReceivedEvent last = Received().back();
        EXPECT_EQ(last.receiver, "mediasync");
        EXPECT_EQ(last.code, code);
        EXPECT_TRUE(last.allZero);
        EXPECT_EQ(last.context, Pointer(0x80c0ffee));
    }
    EXPECT_EQ(Received().size(), 4u);
}

TEST_F(VideoBroadcastEvents, HaveTheirCodeReadLeniently) {
    Register(nullptr);
    for (const Reading& reading : ReadingsOf("int", "")) {
        SCOPED_TRACE(reading.json);
        SendEvent(
            WithMember("{\"type\": \"videobroadcast\", \"channelHandle\": \"0x5\", \"viewerChannelHandle\": \"\"}",
                       "event", reading.json));
        ASSERT_FALSE(Received().empty());
        EXPECT_EQ(std::to_string(Received().back().code), reading.shown);
    }
    EXPECT_EQ(Received().size(), ReadingsOf("int", "").size());
}

TEST_F(VideoBroadcastEvents, OfAnotherObjectAreLoggedAndDropped) {
    Register(Pointer(1));
    RegisterMediaSync(Pointer(2));
    const std::pair<const char*, const char*> types[] = {
        {"\"channel\"", "channel"},
        {"\"\"", ""},
        {"\"VideoBroadcast\"", "VideoBroadcast"},
        {"\"videobroadcast \"", "videobroadcast "},
        {"\"videobroadcast\\u0000\"", "videobroadcast"},
        {"\"mediasync2\"", "mediasync2"},
        {"\"%s%d\"", "%s%d"},
        {"3", "3"},
        {"2.5", "2.5"},
        {"true", "true"},
        {"null", ""},
        {"[\"videobroadcast\"]", ""},
        {"{\"videobroadcast\": 1}", ""},
        {"", ""},
    };
    for (const auto& [type, shown] : types) {
        SCOPED_TRACE(type);
        SendEvent(WithMember("{\"event\": 4}", "type", type));
        EXPECT_EQ(AdaptorLines(), (Lines{"2 ENTER", std::string("5 wrong event obj type ") + shown, "2 LEAVE"}));
    }
    EXPECT_TRUE(Received().empty());
}

TEST_F(VideoBroadcastEvents, AreLoggedOnceAndDroppedIfTheyAreNotObjects) {
    Register(Pointer(1));
    const std::string tooDeep =
        "{\"type\": \"videobroadcast\", \"event\": 4, \"a\": " + std::string(1001, '[') + std::string(1001, ']') + "}";
    for (const std::string& text :
         {std::string("nonsense"), std::string("{\"type\": \"videobroadcast\""), std::string("null"), std::string("7"),
          std::string("[]"), std::string("\"videobroadcast\""), std::string(" "), std::string(1, '\0'),
          std::string("[{\"type\": \"videobroadcast\"}]"), std::string("{\"event\": 1e999}"), tooDeep}) {
        SCOPED_TRACE(text.substr(0, 40));
        SendEvent(text);
        EXPECT_EQ(LinesOf("[ipc_base]"), (Lines{"5 Ipc2Json failed"}));
        EXPECT_TRUE(AdaptorLines().empty());
    }
    EXPECT_TRUE(Received().empty());
    // The connection lives on.
    SendEvent("{\"type\": \"videobroadcast\", \"event\": 4}");
    EXPECT_EQ(Received().size(), 1u);
}

TEST_F(VideoBroadcastEvents, AreLoggedWithTheirDocument) {
    Register(Pointer(1));
    SendEvent("{\"type\": \"videobroadcast\", \"event\": 4}");
    EXPECT_EQ(LinesOf("[ipc_base]"),
              (Lines{"3 recv msg:{\n\t\"event\" : 4,\n\t\"type\" : \"videobroadcast\"\n}\n in m_ipc_id(32) port(7)"}));
}

TEST_F(VideoBroadcastEvents, AreDroppedOnAnotherPort) {
    Register(Pointer(1));
    SendEvent("{\"type\": \"videobroadcast\", \"event\": 4}", 8);
    EXPECT_EQ(LinesOf("[ipc_base]"), (Lines{"5 channel(32) port(8): no receiver"}));
    EXPECT_TRUE(AdaptorLines().empty());
    EXPECT_TRUE(Received().empty());
}

TEST_F(VideoBroadcastEvents, OfOneConnectionKeepTheirOrder) {
    Register(Pointer(1));
    for (int i = 0; i < 200; ++i) {
        SendEvent("{\"type\": \"videobroadcast\", \"event\": 7, \"position\": " + std::to_string(i) + "}");
    }
    const std::vector<ReceivedEvent> received = Received();
    ASSERT_EQ(received.size(), 200u);
    for (int i = 0; i < 200; ++i) EXPECT_EQ(received[i].payload, "position=" + std::to_string(i));
}

TEST_F(VideoBroadcastEvents, OfSeveralConnectionsAllArrive) {
    Register(Pointer(1));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([this] {
            RawConnection connection = RawConnection::To(mDirectory / EventsOf(UnderTest().Wire()).socket);
            for (int i = 0; i < 25; ++i) {
                connection.Write(FrameBytes(kOneWay, 7, "{\"type\": \"videobroadcast\", \"event\": 5}"));
            }
            connection.Write(FrameBytes(kRequest, 4711, "{}"));
            connection.ReadFrame();
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(Received().size(), 100u);
}

TEST_F(VideoBroadcastEvents, HoldLongTexts) {
    Register(Pointer(1));
    const std::string text(64 * 1024, 'x');
    SendEvent("{\"type\": \"videobroadcast\", \"event\": 14, \"error\": 0, \"contentID\": \"" + text +
              "\", \"drmSystemId\": \"K\xc3\xb6ln\", \"rightsIssuerUrl\": \"\\ud83d\\udcfa\"}");
    const std::vector<ReceivedEvent> received = Received();
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].payload, "error=0; contentID=\"" + text + "\"; drmSystemId=\"K\xc3\xb6ln\"; " +
                                       "rightsIssuerUrl=\"\xf0\x9f\x93\xba\"");
}

TEST_F(VideoBroadcastEvents, SpellTheDrmSystemInTwoWays) {
    Register(Pointer(1));
    SendEvent(
        "{\"type\": \"videobroadcast\", \"event\": 12, \"contentID\": \"c\", \"PRCollectionHandle\": \"0x1\", "
        "\"drmSystemId\": \"wrong\", \"drmSystemID\": \"right\"}");
    SendEvent(
        "{\"type\": \"videobroadcast\", \"event\": 13, \"contentID\": \"c\", \"PRCollectionHandle\": \"0x1\", "
        "\"drmSystemId\": \"wrong\", \"drmSystemID\": \"right\", \"blocked\": false}");
    SendEvent(
        "{\"type\": \"videobroadcast\", \"event\": 14, \"error\": 1, \"contentID\": \"c\", "
        "\"drmSystemId\": \"right\", \"drmSystemID\": \"wrong\", \"rightsIssuerUrl\": \"r\"}");
    const std::vector<ReceivedEvent> received = Received();
    ASSERT_EQ(received.size(), 3u);
    EXPECT_EQ(received[0].payload, "contentID=\"c\"; PRCollectionHandle=0x1; drmSystemID=\"right\"");
    EXPECT_EQ(received[1].payload, "contentID=\"c\"; PRCollectionHandle=0x1; drmSystemID=\"right\"; blocked=false");
    EXPECT_EQ(received[2].payload, "error=1; contentID=\"c\"; drmSystemId=\"right\"; rightsIssuerUrl=\"r\"");
}

TEST_F(VideoBroadcastEvents, OfChangedContentShowOnlyWhatTheirFlagsName) {
    RegisterMediaSync(nullptr);
    const std::string dependent =
        "\"timelineSelector\": \"t\", \"unitsPerTick\": 1, \"unitsPerSecond\": 2, \"contentId\": \"c\", "
        "\"contentIdStatus\": 3, \"mrsUrl\": \"m\"";
    const auto shown = [](bool timeline, bool content, bool mrs) {
        return std::string(timeline ? "bTimelineOptionsChange=true; timelineSelector=\"t\"; unitsPerTick=1; "
                                      "unitsPerSecond=2; "
                                    : "bTimelineOptionsChange=false; timelineSelector=null; unitsPerTick=0; "
                                      "unitsPerSecond=0; ") +
               (content ? "bContentIdChange=true; contentId=\"c\"; contentIdStatus=3; "
                        : "bContentIdChange=false; contentId=null; contentIdStatus=0; ") +
               (mrs ? "bMrsUrlChange=true; mrsUrl=\"m\"" : "bMrsUrlChange=false; mrsUrl=null");
    };
    for (int flags = 0; flags < 8; ++flags) {
        const auto word = [&](int bit) { return std::string((flags & bit) != 0 ? "true" : "false"); };
        SendEvent("{\"type\": \"mediasync\", \"event\": 2, \"bTimelineOptionsChange\": " + word(1) +
                  ", \"bContentIdChange\": " + word(2) + ", \"bMrsUrlChange\": " + word(4) + ", " + dependent + "}");
        ASSERT_EQ(Received().size(), static_cast<size_t>(flags + 1));
        EXPECT_EQ(Received().back().payload, shown((flags & 1) != 0, (flags & 2) != 0, (flags & 4) != 0));
    }
}

TEST_F(VideoBroadcastEvents, LikeTheProtocolsExampleArrive) {
    Register(Pointer(1));
    SendEvent(UnderTest().Wire().protocol["examples"]["event"]["document"].toStyledString());
    const std::vector<ReceivedEvent> received = Received();
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].code, 2);
    EXPECT_EQ(received[0].payload, "channelHandle=0x4f10; viewerChannelHandle=0x4f10; quiet=0");
}

TEST_F(VideoBroadcastEvents, GoToTheReceiverOfTheirObject) {
    Register(Pointer(1));
    RegisterMediaSync(Pointer(2));
    SendEvent("{\"type\": \"mediasync\", \"event\": 3, \"state\": 1, \"error\": 2}");
    SendEvent("{\"type\": \"videobroadcast\", \"event\": 1, \"state\": 3, \"error\": 4}");
    const std::vector<ReceivedEvent> received = Received();
    ASSERT_EQ(received.size(), 2u);
    EXPECT_EQ(received[0].receiver, "mediasync");
    EXPECT_EQ(received[0].payload, "state=1; error=2");
    EXPECT_EQ(received[0].context, Pointer(2));
    EXPECT_EQ(received[1].receiver, "videobroadcast");
    EXPECT_EQ(received[1].payload, "state=3; error=4");
    EXPECT_EQ(received[1].context, Pointer(1));
}

}  // namespace hbbtv::test
