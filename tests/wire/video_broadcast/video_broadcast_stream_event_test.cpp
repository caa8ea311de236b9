// The text of a stream event, which comes with its length and one member for each byte.

#include <android/log.h>

#include "video_broadcast_events_fixture.h"

namespace hbbtv::test {

namespace {

using Lines = std::vector<std::string>;

class StreamEventText : public EventsFixture {
  protected:
    explicit StreamEventText(int leastPriority = ANDROID_LOG_VERBOSE) : EventsFixture(leastPriority) {
        Register(Pointer(0x80c0ffee));
    }

    void SendText(const std::string& members) {
        SendEvent(
            "{\"type\": \"videobroadcast\", \"event\": 16, \"url\": \"u\", \"eventName\": \"n\", "
            "\"data\": \"d\", \"status\": \"s\"" +
            (members.empty() ? "" : ", " + members) + "}");
    }

    // What the receiver shows of an event with these members.
    std::string Text(const std::string& members) {
        const size_t before = Received().size();
        SendText(members);
        const std::vector<ReceivedEvent> received = Received();
        if (received.size() != before + 1) return "nothing received";
        const std::string& payload = received.back().payload;
        const std::string head = "url=\"u\"; eventName=\"n\"; data=\"d\"; textLen=";
        const std::string tail = "; status=\"s\"";
        if (payload.rfind(head, 0) != 0) return payload;
        return payload.substr(head.size(), payload.size() - head.size() - tail.size());
    }
};

// Without the log's copy of the document.
class LongStreamEventText : public StreamEventText {
  protected:
    LongStreamEventText() : StreamEventText(ANDROID_LOG_INFO) {}
};

}  // namespace

TEST_F(StreamEventText, IsTheLowByteOfEachMember) {
    EXPECT_EQ(Text("\"textLen\": 3, \"text0\": 65, \"text1\": 66, \"text2\": 256"), "3; text%d=41 42 00");
    EXPECT_EQ(Text("\"textLen\": 2, \"text0\": 321, \"text1\": 4294967295"), "2; text%d=41 ff");
}

TEST_F(StreamEventText, OfLengthZeroIsAnEmptyBuffer) {
    EXPECT_EQ(Text("\"textLen\": 0"), "0; text%d=");
    EXPECT_EQ(Text("\"textLen\": 0, \"text0\": 65"), "0; text%d=");
}

TEST_F(StreamEventText, EndsWhereItsLengthSays) {
    EXPECT_EQ(Text("\"textLen\": 1, \"text0\": 65, \"text1\": 66"), "1; text%d=41");
}

TEST_F(StreamEventText, HasTwoDigitsInItsKeysFromTheEleventhByteOn) {
    std::string members = "\"textLen\": 12";
    for (int i = 0; i < 12; ++i) members += ", \"text" + std::to_string(i) + "\": " + std::to_string(97 + i);
    EXPECT_EQ(Text(members), "12; text%d=61 62 63 64 65 66 67 68 69 6a 6b 6c");
    EXPECT_EQ(Text("\"textLen\": 2, \"text00\": 65, \"text01\": 66"), "2; text%d=00 00");
}

TEST_F(StreamEventText, ReadsBytesLeniently) {
    const std::pair<const char*, const char*> bytes[] = {
        {"null", "00"},     {"true", "01"},       {"false", "00"},       {"65", "41"},    {"255", "ff"},
        {"-1", "00"},       {"4294967296", "00"}, {"65.9", "41"},        {"1e300", "00"}, {"\"65\"", "00"},
        {"\"text\"", "00"}, {"[65]", "00"},       {"{\"a\": 65}", "00"},
    };
    for (const auto& [json, shown] : bytes) {
        EXPECT_EQ(Text(std::string("\"textLen\": 2, \"text0\": ") + json + ", \"text1\": 66"),
                  std::string("2; text%d=") + shown + " 42")
            << json;
    }
    EXPECT_EQ(Text("\"textLen\": 2, \"text1\": 66"), "2; text%d=00 42");
}

TEST_F(StreamEventText, ReadsItsLengthLeniently) {
    for (const char* none :
         {"", "\"textLen\": null, ", "\"textLen\": -1, ", "\"textLen\": -2147483648, ", "\"textLen\": 4294967296, ",
          "\"textLen\": 18446744073709551617, ", "\"textLen\": 1e300, ", "\"textLen\": \"3\", ", "\"textLen\": [3], ",
          "\"textLen\": {}, ", "\"textLen\": false, "}) {
        EXPECT_EQ(Text(std::string(none) + "\"text0\": 65"), "0; text%d=") << none;
    }
    EXPECT_EQ(Text("\"textLen\": true, \"text0\": 65"), "1; text%d=41");
    EXPECT_EQ(Text("\"textLen\": 1.9, \"text0\": 65"), "1; text%d=41");
}

// Every sixteenth byte has a member, the others are zero; blanks make the message as long as one with all members.
TEST_F(LongStreamEventText, MayHaveOneMebibyte) {
    constexpr int kLength = 1 << 20;
    constexpr size_t kLongestMessage = 15u << 20;
    std::string members = "\"textLen\": " + std::to_string(kLength);
    std::string expected = std::to_string(kLength) + "; text%d=";
    const char* const digits = "0123456789abcdef";
    for (int i = 0; i < kLength; ++i) {
        const bool present = i % 16 == 15;
        const int byte = present ? i / 16 * 7 % 251 : 0;
        if (present) members += ", \"text" + std::to_string(i) + "\": " + std::to_string(byte);
        if (i > 0) expected += ' ';
        expected += digits[byte / 16];
        expected += digits[byte % 16];
    }
    members += std::string(kLongestMessage - members.size(), ' ');
    EXPECT_TRUE(Text(members) == expected);
}

TEST_F(StreamEventText, OfMoreThanOneMebibyteMakesTheEventInvalid) {
    for (const char* length : {"1048577", "2147483647", "2147483648", "4294967295"}) {
        SCOPED_TRACE(length);
        SendText(std::string("\"textLen\": ") + length + ", \"text0\": 65");
        EXPECT_EQ(AdaptorLines(), (Lines{"2 ENTER", std::string("5 textLen ") + length + " is too long"}));
        EXPECT_TRUE(Received().empty());
    }
    // The connection lives on.
    EXPECT_EQ(Text("\"textLen\": 1, \"text0\": 65"), "1; text%d=41");
}

}  // namespace hbbtv::test
