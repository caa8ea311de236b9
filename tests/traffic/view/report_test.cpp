// Charts of messages, the slowest exchanges, and how two recordings differ.
#include <gtest/gtest.h>

#include "common/failure.h"
#include "sample_records.h"
#include "traffic/report/difference.h"
#include "traffic/report/ladder.h"
#include "traffic/report/slowest.h"

namespace hbbtv::traffic::test {
namespace {

Record With(Record record, uint64_t at, int library = 4711) {
    record.time = TimeStamp(kWall + at, at);
    record.library = {library, 0, "service"};
    record.platform = {900, 0, "platform"};
    return record;
}

TEST(Ladder, ShowsMessagesInTheOrderOfTheirTimes) {
    Ladder ladder("+01:00");
    const Names names;
    ladder.Add(With(SetChannel(-1, 2000), 0), names);
    ladder.Add(With(GetName(), 500), names);
    ladder.Add(With(ChangedEvent(), 5000000), names);
    EXPECT_EQ(
        ladder.Text(),
        "                 service (4711)                                                              platform (900)\n"
        "12:47:25.458629  |- video_broadcast.SetChannel channel=0x1388f0af trickPlay=false url=\"... ->|\n"
        "12:47:25.459129  |- channel.GetName c_handle=0x1388f0af ------------------------------------>|\n"
        "12:47:25.459441  |<- 0 name=\"Das Erste HD\" --------------------------------------------------|  0.312 ms\n"
        "12:47:25.460629  |<- -1 ---------------------------------------------------------------------|  2.000 ms  !\n"
        "                 |                                                                           |  ... 4.998 s "
        "...\n"
        "12:47:30.458629  |<- channel_config.changed reserved=\"A\" ------------------------------------|\n");
}

TEST(Ladder, HasAColumnForEachProcessAndShowsWhatHasNoReply) {
    Ladder ladder("");
    Record open = With(GetName(), 0, 1);
    open.reply.reset();
    open.duration.reset();
    open.status.reset();
    open.open = true;
    ladder.Add(open, Names());
    open.open = false;
    ladder.Add(With(open, 1, 2), Names());
    for (int pid = 3; pid < 20; ++pid) ladder.Add(With(ChangedEvent(), 2, pid), Names());
    const std::string text = ladder.Text();
    const std::string head = text.substr(0, text.find('\n'));
    EXPECT_NE(head.find("service (1)"), std::string::npos) << head;
    EXPECT_NE(head.find("service (2)"), std::string::npos) << head;
    EXPECT_EQ(head.find("service (19)"), std::string::npos) << head;
    EXPECT_NE(head.find("others"), std::string::npos) << head;
    EXPECT_NE(text.find("|  no reply yet\n"), std::string::npos) << text;
    EXPECT_NE(text.find("no reply  !\n"), std::string::npos) << text;
}

TEST(Ladder, IsAPictureWithoutTheMarkupOfPeers) {
    Ladder ladder("");
    ladder.Add(With(GetName(R"({"name":"</svg><script>&\"\u0001","ret":0})"), 0), Names());
    const std::string svg = ladder.Svg();
    EXPECT_EQ(svg.find("<script"), std::string::npos);
    EXPECT_NE(svg.find("&lt;/svg&gt;&lt;script&gt;&amp;"), std::string::npos) << svg;
    EXPECT_EQ(svg.find("<svg "), 0u);
    EXPECT_EQ(svg.substr(svg.size() - 7), "</svg>\n");
}

TEST(Ladder, RefusesAChartThatIsUnreadable) {
    Ladder ladder("");
    const Record record = GetName();
    for (size_t i = 0; i < Ladder::kMost; ++i) ladder.Add(record, Names());
    try {
        ladder.Add(record, Names());
        ADD_FAILURE() << "no failure";
    } catch (const Failure& e) {
        EXPECT_EQ(std::string(e.what()).find("a chart of more than 2000 records is unreadable; select fewer"), 0u);
    }
}

TEST(Ladder, SaysThatThereAreNoMessages) {
    EXPECT_EQ(Ladder("").Text(), "no messages\n");
}

TEST(Slowest, ListsWhatHasNoReplyAndThenTheSlowest) {
    Slowest slowest("");
    for (uint64_t i = 1; i <= 100; ++i) slowest.Add(SetChannel(0, i * 1000), Names());
    Record open = GetName();
    open.reply.reset();
    slowest.Add(open, Names());
    slowest.Add(ChangedEvent(), Names());
    const std::vector<std::string> lines = slowest.Lines();
    ASSERT_EQ(lines.size(), 1 + Slowest::kMost);
    EXPECT_NE(lines[0].find("no reply"), std::string::npos);
    EXPECT_NE(lines[1].find("100.000 ms"), std::string::npos) << lines[1];
    EXPECT_NE(lines.back().find("81.000 ms"), std::string::npos) << lines.back();
}

TEST(Slowest, SaysHowManyItDoesNotList) {
    Slowest slowest("");
    Record open = GetName();
    open.reply.reset();
    for (size_t i = 0; i < Slowest::kMost + 3; ++i) slowest.Add(open, Names());
    EXPECT_EQ(slowest.Lines().size(), Slowest::kMost + 1);
    EXPECT_EQ(slowest.Lines().back(), "and 3 more without a reply");
}

TEST(Difference, ShowsWhatOnlyOneHasAndHowTimesChanged) {
    Statistics before;
    Statistics after;
    before.Add(SetChannel(0, 1000));
    before.Add(GetName());
    after.Add(SetChannel(-1, 5000));
    after.Add(ChangedEvent());
    const std::string text = DifferenceText(before, after);
    EXPECT_NE(
        text.find(
            "       1       -       0      -     0.312        -     0.312        -  channel.GetName  (only before)\n"),
        std::string::npos)
        << text;
    EXPECT_NE(text.find("channel_config.changed  (only after)\n"), std::string::npos) << text;
    EXPECT_NE(text.find("       1       1       0      1     1.000    5.000     1.000    5.000  "
                        "video_broadcast.SetChannel  (5.0 times as slow)\n"),
              std::string::npos)
        << text;
    const Json::Value json = DifferenceJson(before, after);
    ASSERT_EQ(json["operations"].size(), 3u);
    EXPECT_FALSE(json["operations"][0].isMember("after"));
    EXPECT_EQ(json["operations"][2]["after"]["errors"].asInt(), 1);
}

}  // namespace
}  // namespace hbbtv::traffic::test
