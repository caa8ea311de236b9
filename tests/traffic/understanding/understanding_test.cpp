// The exchanges in the bytes of a connection, however these arrive.
#include "traffic/understanding/understanding.h"

#include <gtest/gtest.h>

#include "common/frame.h"

namespace hbbtv::traffic {
namespace {

const TimeStamp kTime(1700000000000000, 1000);

std::string Bytes(int type, const std::string& payload, int port = 2) {
    return Encode({type, port, payload});
}

std::string Request() {
    return Bytes(kRequest, R"({"c_handle":"0x1000","method":13,"type":12})");
}

struct UnderstandingTest : testing::Test {
    UnderstandingTest() {
        understanding.Connected({1, "service_plugin_to_hbbtv_vb_chn", {10, 0, "service"}, {20, 0, "tv"}}, kTime);
        records.clear();
    }

    void Send(Direction direction, const std::string& bytes, uint64_t time = 1000, const std::string& rule = "") {
        understanding.Take(1, direction, bytes, TimeStamp(1700000000000000, time), rule);
    }
    void ToServer(const std::string& bytes) { Send(Direction::kToServer, bytes); }
    void ToCaller(const std::string& bytes, uint64_t time = 1000) { Send(Direction::kToCaller, bytes, time); }

    std::vector<Record> records;
    Understanding understanding{[this](const Record& record) { records.push_back(record); }};
};

TEST_F(UnderstandingTest, PairsARequestWithItsReply) {
    ToServer(Request());
    EXPECT_EQ(records.size(), 0u);
    ToCaller(Bytes(kReply, R"({"name":"arte","ret":0})"), 1700);
    ASSERT_EQ(records.size(), 1u);
    const Record& record = records[0];
    EXPECT_EQ(record.family, "channel");
    EXPECT_EQ(record.operation, "GetName");
    EXPECT_EQ(record.duration, 700u);
    EXPECT_EQ(record.status, 0);
    EXPECT_EQ(record.reply->json["name"].asString(), "arte");
    EXPECT_EQ(record.library.pid, 10);
    EXPECT_EQ(record.platform.pid, 20);
    EXPECT_FALSE(record.open);
}

TEST_F(UnderstandingTest, DoesNotDependOnHowTheBytesAreCut) {
    const std::string reply = Bytes(kReply, R"({"ret":0})");
    for (const char c : Request() + Bytes(kOneWay, R"({"method":1,"type":12})") + Request()) ToServer({c});
    for (const char c : reply + reply) ToCaller({c});
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].message.type, kOneWay);
    for (const size_t i : {1u, 2u}) {
        EXPECT_EQ(records[i].operation, "GetName");
        EXPECT_EQ(records[i].status, 0);
    }
    ToServer(Request() + Request());
    ToCaller(reply + reply);
    EXPECT_EQ(records.size(), 5u);
}

TEST_F(UnderstandingTest, RepliesAnswerRequestsInTheirOrder) {
    ToServer(Bytes(kRequest, R"({"a":1})") + Bytes(kRequest, R"({"a":2})"));
    EXPECT_EQ(understanding.Open().size(), 2u);
    ToCaller(Bytes(kReply, R"({"ret":1})") + Bytes(kReply, R"({"ret":2})"));
    ASSERT_EQ(records.size(), 2u);
    for (const size_t i : {0u, 1u}) EXPECT_EQ(records[i].message.json["a"].asInt(), *records[i].status);
    EXPECT_TRUE(understanding.Open().empty());
}

TEST_F(UnderstandingTest, KeepsTheBeginningOfALargePayloadAndItsLength) {
    const std::string large(kLargestPayload + 70000, 'x');
    ToServer(Bytes(kOneWay, large) + Bytes(kOneWay, "{}"));
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].message.size, large.size());
    EXPECT_EQ(records[0].message.raw.size(), kLargestPayload);
    EXPECT_FALSE(records[0].message.Readable());
    EXPECT_TRUE(records[1].message.Readable()) << "the next message is found";
}

TEST_F(UnderstandingTest, RecordsBytesThatAreNotAMessageAtOnceAndCompletely) {
    const std::string text = "this is not a message, but a sentence";
    for (const char c : text) ToServer({c});
    std::string all;
    for (const Record& record : records) {
        EXPECT_EQ(NameOf(record.kind), "damaged");
        all += record.message.raw;
    }
    EXPECT_EQ(all, text);
    const std::string note = records[0].note;
    EXPECT_EQ(note, "from the library: the bytes are not a message");
}

TEST_F(UnderstandingTest, AHeaderOfAnUnknownTypeOrALongPayloadIsNotDamaged) {
    ToServer(Bytes(77, "{}") + Bytes(kOneWay, "{}"));
    EXPECT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].message.type, 77);
    const std::string header = Bytes(kRequest, std::string(1, 'x')).substr(0, 12);
    std::string long_header = header;
    const uint32_t size = kLongestPayload + 1;
    long_header.replace(0, 4, reinterpret_cast<const char*>(&size), 4);
    ToServer(long_header + std::string(size, ' ') + Bytes(kOneWay, "{}"));
    EXPECT_EQ(records.size(), 3u) << "the request is open, the message after it is found";
}

TEST_F(UnderstandingTest, AConnectionThatEndsLeavesItsOpenRequestsAndItsPartsOfMessages) {
    ToServer(Request() + Request().substr(0, 20));
    ToCaller("12345");
    understanding.Closed(1, "by the library", kTime);
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[0].message.raw.size(), 8u);
    EXPECT_EQ(records[0].note, "from the library: the message is cut");
    EXPECT_EQ(records[1].message.raw, "12345");
    EXPECT_EQ(records[1].note, "from the platform: the message is cut");
    EXPECT_TRUE(records[2].open);
    EXPECT_EQ(records[2].operation, "GetName");
    EXPECT_EQ(records[3].note, "by the library");
    EXPECT_TRUE(understanding.Open().empty());
}

TEST_F(UnderstandingTest, AMessageThatNoRequestAskedForIsRecordedAsSuch) {
    ToCaller(Bytes(kReply, R"({"ret":0})"));
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].note, "from the platform, which was not asked");
    EXPECT_FALSE(records[0].reply);
}

TEST_F(UnderstandingTest, RequestsWithoutRepliesDoNotAccumulate) {
    for (int i = 0; i < 5000; ++i) ToServer(Request());
    EXPECT_LE(understanding.Open().size(), 1000u);
    EXPECT_EQ(records.size() + understanding.Open().size(), 5000u);
}

TEST_F(UnderstandingTest, AGapEndsAPartOfAMessageAndWhatIsOpen) {
    ToServer(Request() + "12345");
    understanding.Lost(1, Direction::kToServer, 7, kTime);
    ToServer(Request());
    ToCaller(Bytes(kReply, R"({"ret":3})"));
    ASSERT_EQ(records.size(), 3u);
    EXPECT_TRUE(records[0].open);
    EXPECT_EQ(records[1].note, "7 bytes were passed on, but not recorded: the recorder is too slow");
    EXPECT_EQ(records[2].status, 3);
}

TEST_F(UnderstandingTest, EventsComeFromThePlatformWhichConnects) {
    understanding.Connected({2, "service_hbbtv_to_plugin_vb_chn_config", {20, 0, "tv"}, {10, 0, "service"}}, kTime);
    understanding.Take(2, Direction::kToServer, Bytes(kOneWay, R"({"event":0,"reserved":"A"})", 3), kTime, "delay 2 s");
    ASSERT_EQ(records.size(), 2u);
    EXPECT_TRUE(records[1].event);
    EXPECT_EQ(records[1].operation, "changed");
    EXPECT_EQ(records[1].platform.pid, 20);
    EXPECT_EQ(records[1].library.pid, 10);
    EXPECT_EQ(records[1].rule, "delay 2 s");
}

}  // namespace
}  // namespace hbbtv::traffic
