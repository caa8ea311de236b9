// Records as text, with the names that the traffic has given to handles; and their statistics.
#include "traffic/view/line.h"

#include <gtest/gtest.h>

#include "sample_records.h"
#include "traffic/view/statistics.h"

namespace hbbtv::traffic::test {
namespace {

TEST(Line, ShowsAnExchange) {
    const Names names;
    EXPECT_EQ(Line(GetName(), names),
              R"(11:47:25.458629   channel.GetName c_handle=0x1388f0af -> 0 name="Das Erste HD"  0.312 ms)");
    EXPECT_EQ(
        Line(SetChannel(-1, 5201000), names),
        R"(11:47:25.458629   video_broadcast.SetChannel channel=0x1388f0af trickPlay=false url="" vb_handle=0x00001000 -> -1  5.201 s)");
}

TEST(Line, MarksEventsAndUsesTheZoneOfTheRecording) {
    EXPECT_EQ(Line(ChangedEvent(), Names(), "+01:00"), R"(12:47:25.458629 * channel_config.changed reserved="A")");
    EXPECT_EQ(TimeOfDay(kWall, "-12:30"), "23:17:25.458629");
    EXPECT_EQ(TimeOfDay(kWall, "no zone"), "11:47:25.458629");
    EXPECT_EQ(TimeOfDay(0, "-01:00"), "23:00:00.000000");
}

TEST(Line, ShowsWhatIsMissingOrDamagedOrWasDoneOnPurpose) {
    Record open = GetName();
    open.open = true;
    open.reply.reset();
    open.duration.reset();
    EXPECT_EQ(Line(open, Names()), "11:47:25.458629   channel.GetName c_handle=0x1388f0af -> no reply yet");
    open.open = false;
    open.note = "the platform has closed the connection";
    EXPECT_EQ(Line(open, Names()),
              "11:47:25.458629   channel.GetName c_handle=0x1388f0af -> no reply  # the platform has "
              "closed the connection");
    Record damaged = GetName("\x1b[2J{");
    damaged.rule = "op:GetName corrupt";
    EXPECT_EQ(Line(damaged, Names()),
              "11:47:25.458629   channel.GetName c_handle=0x1388f0af -> 5 bytes "
              "\"\\u001b[2J{\"  0.312 ms  [op:GetName corrupt]");
    const Record unknown = Exchange(kChannels, R"({"method":777})", R"({"ret":0})");
    EXPECT_NE(Line(unknown, Names()).find(" channel.? method=777"), std::string::npos) << Line(unknown, Names());
}

TEST(Line, CutsWhatIsLongBetweenCharacters) {
    std::string name;
    for (int i = 0; i < 60; ++i) name += "\xc3\xa4";
    const std::string line = Line(GetName(R"({"name":")" + name + R"(","ret":0})"), Names());
    EXPECT_NE(line.find("\"" + name.substr(0, 80) + "...\""), std::string::npos) << line;
    std::string members;
    for (int i = 0; i < 40; ++i) members += "\"k" + std::to_string(i) + "\":1,";
    EXPECT_NE(Line(GetName("{" + members + "\"ret\":0}"), Names()).find(" and 24 more"), std::string::npos);
}

TEST(Line, ShowsConnections) {
    Record record;
    record.kind = Record::Kind::Connected;
    record.connection = 3;
    record.time = TimeStamp(kWall, 0);
    record.library = {4711, 0, "hbbtv-service"};
    Identify(record, kChannels);
    EXPECT_EQ(Line(record, Names()),
              "11:47:25.458629 + channel connection 3: library hbbtv-service (4711), platform an "
              "unknown process");
    record.kind = Record::Kind::Closed;
    record.note = "by the library";
    EXPECT_EQ(Line(record, Names()), "11:47:25.458629 - channel connection 3 closed  # by the library");
}

TEST(Names, AreLearntFromTheTraffic) {
    Names names;
    EXPECT_EQ(names.Of(0x1388f0af), "");
    names.Learn(SetChannel(0, 1));
    EXPECT_EQ(names.KindOf(0x1388f0af), "channel");
    EXPECT_EQ(names.KindOf(0x1000), "video_broadcast");
    names.Learn(GetName());
    EXPECT_EQ(names.Of(0x1388f0af), "Das Erste HD");
    EXPECT_NE(Line(SetChannel(0, 1), names).find(R"(channel=0x1388f0af "Das Erste HD" )"), std::string::npos);
    names.Learn(Exchange(kChannels, R"({"c_handle":"0x1388f0af","method":0,"type":12})", R"({"ret":0})"));
    EXPECT_EQ(names.Of(0x1388f0af), "");
}

TEST(Names, AreNotLearntFromWhatFailed) {
    Names names;
    names.Learn(GetName(R"({"name":"Das Erste HD","ret":-1})"));
    names.Learn(GetName("no JSON"));
    names.Learn(
        Exchange(kChannels, R"({"c_handle":"0x1388f0af","method":27,"type":12})", R"({"longname":"x","ret":0})"));
    EXPECT_EQ(names.Of(0x1388f0af), "");
}

TEST(Names, KeepTheLatestOnly) {
    Names names;
    names.Learn(GetName());
    for (size_t i = 0; i < Names::kMost; ++i) {
        names.Learn(Exchange(kChannelConfig, R"({"method":2,"type":19})",
                             "{\"handle\":\"0x" + std::to_string(10000000 + i) + "\",\"ret\":0}"));
    }
    EXPECT_EQ(names.Of(0x1388f0af), "");
    EXPECT_EQ(names.KindOf(0x10000000), "channel");
}

TEST(Durations, ArePercentilesExactToAThirtySecond) {
    Durations durations;
    EXPECT_EQ(durations.Percentile(0.5), 0u);
    for (uint64_t i = 1; i <= 100000; ++i) durations.Add(i * 7);
    EXPECT_EQ(durations.Count(), 100000u);
    EXPECT_EQ(durations.Longest(), 700000u);
    EXPECT_EQ(durations.Percentile(1), 700000u);
    for (const double part : {0.001, 0.5, 0.9, 0.99}) {
        const double exact = part * 700000;
        EXPECT_NEAR(static_cast<double>(durations.Percentile(part)), exact, exact / 31) << part;
    }
    Durations extreme;
    extreme.Add(0);
    extreme.Add(UINT64_MAX);
    EXPECT_EQ(extreme.Percentile(0.5), 0u);
    EXPECT_EQ(extreme.Longest(), UINT64_MAX);
    EXPECT_GT(extreme.Percentile(1), uint64_t{1} << 39);
}

TEST(Statistics, CountCallsErrorsBytesAndTimes) {
    Statistics statistics;
    for (uint64_t i = 0; i < 20; ++i) statistics.Add(SetChannel(i == 7 ? -1 : 0, 1000 * (i + 1)));
    statistics.Add(ChangedEvent());
    Record open = GetName();
    open.reply.reset();
    open.duration.reset();
    open.status.reset();
    open.open = true;
    statistics.Add(open);
    const Statistics::Operation& set = statistics.Operations().at("video_broadcast.SetChannel");
    EXPECT_EQ(set.calls, 20u);
    EXPECT_EQ(set.errors, 1u);
    EXPECT_EQ(set.durations.Longest(), 20000u);
    EXPECT_EQ(statistics.Operations().at("channel.GetName").errors, 0u);
    EXPECT_TRUE(statistics.Operations().at("channel_config.changed").event);
    const Json::Value json = statistics.Json();
    EXPECT_EQ(json["records"]["exchange"].asInt(), 22);
    EXPECT_EQ(json["errors"].asInt(), 1);
    ASSERT_EQ(json["slowest"].size(), 10u);
    EXPECT_EQ(json["slowest"][0]["duration_us"].asInt(), 20000);
    EXPECT_EQ(json["slowest"][9]["duration_us"].asInt(), 11000);
    ASSERT_EQ(json["open"].size(), 1u);
    EXPECT_EQ(json["open"][0]["operation"].asString(), "channel.GetName");
    const std::string text = statistics.Text();
    EXPECT_NE(text.find("22 exchanges, 1 error,"), std::string::npos) << text;
    EXPECT_NE(text.find("      20       1 "), std::string::npos) << text;
    EXPECT_NE(text.find("* channel_config.changed"), std::string::npos) << text;
    EXPECT_NE(text.find("slowest\n  11:47:25.458629  20.000 ms  video_broadcast.SetChannel"), std::string::npos)
        << text;
}

TEST(Statistics, StayShortWhateverAPeerInvents) {
    Statistics statistics;
    for (int i = 0; i < 5000; ++i) statistics.Add(Exchange("invented_" + std::to_string(i), "{}"));
    EXPECT_LE(statistics.Operations().size(), 2001u);
    EXPECT_EQ(statistics.Operations().at("others").calls, 3000u);
}

}  // namespace
}  // namespace hbbtv::traffic::test
