// Which exchange of a recording a message is, and how it differs.
#include "traffic/replay/matcher.h"

#include <gtest/gtest.h>

#include "sample_records.h"
#include "traffic/compare/difference.h"

namespace hbbtv::traffic::test {
namespace {

constexpr const char* kProgrammes = "service_plugin_to_hbbtv_program";

struct MatcherTest : testing::Test {
    // Adds a request and its reply, a millisecond after the one before.
    void Recorded(const std::string& socket, const std::string& request, const std::string& reply = R"({"ret":0})") {
        traffic::Exchange exchange{test::Exchange(socket, request, reply), 0, {}, false};
        exchange.number = conversation.exchanges.size() + 1;
        exchange.begin = 1000 * exchange.number;
        conversation.exchanges.Add(exchange);
    }

    // Returns the number of the record that the message is, or 0.
    uint64_t Take(Matcher& matcher, const std::string& socket, const std::string& request) {
        const Message live = test::Exchange(socket, request).message;
        const std::optional<size_t> found = matcher.Take(socket, live);
        if (!found) return 0;
        const traffic::Exchange exchange = conversation.exchanges[*found];
        const MessageFacts& facts = FactsOf(exchange.family, exchange.operation, exchange.event, Side::Message);
        handles.Learn(facts, exchange.message.json, live.json);
        return exchange.number;
    }

    std::vector<Difference> Compare(const std::string& socket, const std::string& request, const std::string& recorded,
                                    const std::string& live) {
        const Record a = test::Exchange(socket, request, recorded);
        const Record b = test::Exchange(socket, request, live);
        return Differences(FactsOf(a.family, a.operation, a.event, Side::Reply), *a.reply, *b.reply, handles);
    }

    Conversation conversation;
    Handles handles;
};

std::string Name(const std::string& channel) {
    return R"({"c_handle":")" + channel + R"(","method":13,"type":12})";
}

std::string Create(const std::string& context) {
    return R"({"context":")" + context + R"(","method":0,"type":3})";
}

TEST_F(MatcherTest, TakesEqualMessagesInTheirOrderAndEachOnce) {
    Recorded(kChannels, Name("0x1"));
    Recorded(kChannels, Name("0x2"));
    Recorded(kChannels, Name("0x1"));
    handles.Bind("channel", 1, 1);
    handles.Bind("channel", 2, 2);
    Matcher matcher(conversation, false, handles, {});
    EXPECT_EQ(Take(matcher, kChannels, Name("0x2")), 2u);
    EXPECT_EQ(Take(matcher, kChannels, Name("0x1")), 1u);
    EXPECT_EQ(Take(matcher, kChannels, Name("0x1")), 3u);
    EXPECT_EQ(Take(matcher, kChannels, Name("0x1")), 0u);
    EXPECT_EQ(Take(matcher, kChannels, Name("0x2")), 0u);
}

TEST_F(MatcherTest, ReplacesHandlesThatAreSeenForTheFirstTimeByThoseOfTheRecording) {
    Recorded(kVideoBroadcast, Create("0x7"));
    Recorded(kVideoBroadcast, Create("0x8"));
    Recorded(kVideoBroadcast, Create("0x7"));
    Matcher matcher(conversation, false, handles, {});
    EXPECT_EQ(Take(matcher, kVideoBroadcast, Create("0x70")), 1u);
    EXPECT_EQ(Take(matcher, kVideoBroadcast, Create("0x70")), 3u);
    EXPECT_EQ(Take(matcher, kVideoBroadcast, Create("0x80")), 2u);
    EXPECT_EQ(handles.Live("context", 0x8), 0x80u);
}

TEST_F(MatcherTest, DoesNotTakeNullForAHandle) {
    Recorded(kVideoBroadcast, Create(""));
    Matcher matcher(conversation, false, handles, {});
    EXPECT_EQ(Take(matcher, kVideoBroadcast, Create("0x7")), 0u);
    EXPECT_EQ(Take(matcher, kVideoBroadcast, Create("")), 1u);
}

TEST_F(MatcherTest, TakesOnlyTheNextMessageWhenStrict) {
    Recorded(kVideoBroadcast, Create("0x7"));
    Recorded(kChannels, Name("0x1"));
    Matcher matcher(conversation, false, handles, {true, false});
    EXPECT_EQ(Take(matcher, kChannels, Name("0x1")), 0u);
    EXPECT_EQ(matcher.Nearest(kChannels, {}), "expected is record 1, video_broadcast.Create");
    EXPECT_EQ(Take(matcher, kVideoBroadcast, Create("0x7")), 1u);
    EXPECT_EQ(Take(matcher, kChannels, Name("0x1")), 2u);
    EXPECT_EQ(matcher.Nearest(kChannels, {}), "all records have been replayed");
}

TEST_F(MatcherTest, RepeatsTheLastOfEqualMessagesIfThatIsWanted) {
    Recorded(kChannels, Name("0x1"));
    Recorded(kChannels, Name("0x1"));
    Matcher matcher(conversation, false, handles, {false, true});
    EXPECT_EQ(Take(matcher, kChannels, Name("0x1")), 1u);
    EXPECT_EQ(Take(matcher, kChannels, Name("0x1")), 2u);
    EXPECT_EQ(Take(matcher, kChannels, Name("0x1")), 2u);
    EXPECT_EQ(Take(matcher, kChannels, Name("0x2")), 0u);
}

TEST_F(MatcherTest, NamesTheNearestMessageAndTheDifference) {
    Recorded(kChannels, R"({"c_handle":"0x1","method":12,"name":"One","type":12})");
    Recorded(kChannels, R"({"c_handle":"0x2","method":12,"name":"Two","type":12})");
    handles.Bind("channel", 1, 1);
    handles.Bind("channel", 2, 2);
    Matcher matcher(conversation, false, handles, {});
    const auto nearest = [&](const std::string& request) {
        return matcher.Nearest(kChannels, test::Exchange(kChannels, request).message);
    };
    EXPECT_EQ(nearest(R"({"c_handle":"0x2","method":12,"name":"Three","type":12})"),
              R"(the nearest is record 2, channel.SetName: "name" is "Three", in the recording "Two")");
    EXPECT_EQ(nearest(Name("0x1")), "the recording has no such message");
    const std::string one = R"({"c_handle":"0x1","method":12,"name":"One","type":12})";
    EXPECT_EQ(Take(matcher, kChannels, one), 1u);
    EXPECT_EQ(nearest(one), "all records of this message have been replayed; the nearest is record 1, channel.SetName");
    ASSERT_EQ(matcher.Left().size(), 1u);
    EXPECT_EQ(matcher.Left()[0], 1u);
}

TEST_F(MatcherTest, TakesMessagesThatAreNotJsonByTheirBytes) {
    Recorded(kChannels, "\x01\x02");
    Matcher matcher(conversation, false, handles, {});
    EXPECT_EQ(Take(matcher, kChannels, "\x01"), 0u);
    EXPECT_EQ(Take(matcher, kChannels, "\x01\x02"), 1u);
}

TEST_F(MatcherTest, OtherHandlesAreADifferenceOnlyIfTheyAreMixedUp) {
    const std::string request = R"({"method":2,"type":19})";
    const auto compare = [&](const std::string& recorded, const std::string& live) {
        const auto reply = [](const std::string& handle) { return R"({"handle":")" + handle + R"(","ret":0})"; };
        return Compare(kChannelConfig, request, reply(recorded), reply(live));
    };
    EXPECT_TRUE(compare("0x1", "0x11").empty());
    handles.Bind("channel", 1, 0x11);
    handles.Bind("channel", 2, 0x12);
    EXPECT_TRUE(compare("0x1", "0x11").empty());
    EXPECT_TRUE(compare("0x1", "0x13").empty()) << "the platform may return another handle each time";
    ASSERT_EQ(compare("0x1", "0x12").size(), 1u);
    EXPECT_EQ(compare("0x1", "0x12")[0].text,
              R"("handle" is 0x12, which is 0x2 of the recording, in the recording 0x1)");
    EXPECT_EQ(compare("0x1", "")[0].text, R"("handle" is null, in the recording 0x1)");
}

TEST_F(MatcherTest, KnowsWhatDependsOnTheTime) {
    const std::string request = R"({"handle":"0x1","method":13,"type":5})";
    const Record start = test::Exchange(kProgrammes, request);
    ASSERT_EQ(start.operation, "GetStartTime");
    const auto differences =
        Compare(kProgrammes, request, R"({"out_startTime":1,"ret":0})", R"({"ret":0,"out_startTime":2})");
    ASSERT_EQ(differences.size(), 1u);
    EXPECT_TRUE(differences[0].clock);
    EXPECT_FALSE(Compare(kProgrammes, request, R"({"ret":0})", R"({"ret":1})")[0].clock);
    EXPECT_EQ(Compare(kProgrammes, request, R"({"ret":0,"x":1})", R"({"ret":0,"y":2})").size(), 2u);
}

}  // namespace
}  // namespace hbbtv::traffic::test
