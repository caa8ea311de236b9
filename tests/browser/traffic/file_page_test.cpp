// A recording as one HTML file, in Chromium.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "common/text/json.h"
#include "page_in_chromium.h"
#include "recording_page.h"
#include "sample_records.h"
#include "scratch_directory.h"
#include "traffic/view/statistics.h"

namespace hbbtv::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using traffic::Record;
using traffic::test::ChangedEvent;
using traffic::test::Exchange;
using traffic::test::GetName;
using traffic::test::kVideoBroadcast;
using traffic::test::kWall;
using traffic::test::SetChannel;

// Records with ascending numbers and times, a tenth of a second apart.
std::vector<Record> Numbered(std::vector<Record> records) {
    uint64_t number = 0;
    for (Record& record : records) {
        ++number;
        record.number = number;
        record.time = TimeStamp(kWall + number * 100000, number * 100000);
    }
    return records;
}

std::vector<Record> Sample() {
    return Numbered({GetName(), SetChannel(0, 5000), SetChannel(-1, 2500000), ChangedEvent(), GetName()});
}

class FilePage : public testing::Test {
  protected:
    void Show(const std::vector<Record>& records) {
        page.Open(WritePage(directory / "traffic.html", records));
        page.Await(kAllAreShown);
    }

    // Returns the texts of the elements that the selector finds.
    std::vector<std::string> Texts(const std::string& selector) {
        std::vector<std::string> texts;
        for (const Json::Value& text :
             page.Evaluate("[...document.querySelectorAll('" + selector +
                           "')].filter((e) => e.checkVisibility()).map((e) => e.textContent)")) {
            texts.push_back(text.asString());
        }
        return texts;
    }

    // Returns the operation of the selected message.
    std::string Selected() { return page.Text("page.view.selected ? String(page.view.selected.number) : ''"); }

    const ScratchDirectory directory;
    PageInChromium page;
};

TEST_F(FilePage, ShowsEveryRecordAndLoadsNothingElse) {
    Show(Sample());
    EXPECT_EQ(page.Text("byId('state').textContent"), "5 records");
    page.Await("document.querySelectorAll('.row:not([hidden])').length === 5");
    const std::vector<std::string> operations = Texts(".row .operation");
    EXPECT_EQ(operations.size(), 5u);
    EXPECT_EQ(std::count(operations.begin(), operations.end(), "SetChannel"), 2);
    // The name comes from the reply to GetName; the time is that of the recording's zone.
    EXPECT_THAT(page.Text("page.list.pool.find((line) => line.row.number === 2).textContent"),
                HasSubstr("12:47:25.658→video_broadcastSetChannelchannel=0x1388f0af \"Das Erste HD\" trickPlay=false"));
    EXPECT_THAT(page.Text("page.list.pool.find((line) => line.row.number === 3).textContent"),
                HasSubstr("ret -12.50 s"));
    EXPECT_THAT(page.Complaints(), IsEmpty());
    EXPECT_THAT(page.Requests(), ElementsAre("file://" + directory / "traffic.html"));
}

TEST_F(FilePage, ShowsTextOfPagesAsText) {
    const std::vector<std::string> hostile{
        "</script><script>document.title = 'HIT'</script>",    "<!--<script>",
        "<img src=x onerror=\"document.title = 'HIT'\">",      "]]>\\u003c/script>",
        "\xe2\x80\xa8 \xe2\x80\xa9 \xc3\xa4 \xf0\x9f\x93\xba", "'\"`${document.title = 'HIT'}"};
    std::vector<Record> records;
    for (const std::string& name : hostile) {
        Json::Value reply(Json::objectValue);
        reply["ret"] = 0;
        reply["name"] = name;
        records.push_back(GetName(WriteJson(reply)));
    }
    records[0].library.name = hostile[0];
    Show(Numbered(records));
    for (size_t i = 0; i < hostile.size(); ++i) {
        page.Evaluate("page.select(page.view.row(" + std::to_string(i) + "))");
        EXPECT_EQ(page.Text("JSON.parse(document.querySelectorAll('.body pre')[1].textContent).name"), hostile[i]);
    }
    for (const char* view : {"ladder", "statistics", "television"})
        page.Evaluate("page.show('" + std::string(view) + "')");
    EXPECT_EQ(page.Text("document.title"), "HbbTV traffic /tmp/tv");
    EXPECT_THAT(page.Complaints(), IsEmpty());
}

TEST_F(FilePage, ShowsBothBodiesSideBySideWithAllDigits) {
    Show(Numbered({Exchange(kVideoBroadcast, R"({"method":77,"number":18446744073709551615,"vb_handle":"0x1000"})",
                            R"({"ret":0,"time":9007199254740993})")}));
    page.Press("ArrowDown");
    EXPECT_THAT(Texts(".body pre"), ElementsAre("{\n  \"method\": 77,\n  \"number\": 18446744073709551615,\n"
                                                "  \"vb_handle\": \"0x1000\"\n}",
                                                "{\n  \"ret\": 0,\n  \"time\": 9007199254740993\n}"));
    const Json::Value left = page.Evaluate(
        "[...document.querySelectorAll('.body')].map((body) => body.getBoundingClientRect()).map((box) => [box.left, "
        "box.top])");
    EXPECT_LT(left[0][0].asDouble(), left[1][0].asDouble());
    EXPECT_EQ(left[0][1], left[1][1]);
}

TEST_F(FilePage, ShowsBytesThatAreNotJson) {
    Record damaged;
    damaged.kind = Record::Kind::Damaged;
    damaged.message.raw = std::string("\0\x01 no message", 13);
    Show(Numbered({damaged}));
    page.Press("j");
    EXPECT_THAT(Texts(".body pre"),
                ElementsAre("000000  00 01 20 6e 6f 20 6d 65 73 73 61 67 65           .. no message"));
    EXPECT_TRUE(page.Evaluate("byId('copy').disabled").asBool());
}

TEST_F(FilePage, ShowsAnEventThatNoClientReceived) {
    Record record = ChangedEvent();
    record.message.type = kRequest;
    record.reply = traffic::Message{kReply, 2, 5, {}, ""};
    traffic::SetPayload(*record.reply, "null\n");
    record.duration = 100;
    Show(Numbered({record}));
    page.Await("document.querySelector('.row.error .result')?.textContent === 'null'");
}

TEST_F(FilePage, ShowsEachRecordOnceHoweverOftenFilteringPauses) {
    Show(Numbered(std::vector<Record>(1000, GetName())));
    // A clock by which each look at it is another slice of time.
    page.Evaluate("(() => { let now = 0; performance.now = () => (now += 1000); })()");
    page.Evaluate("page.filterBy('op:GetName'), page.view.restart().then(() => 1)");
    EXPECT_EQ(page.Evaluate("page.view.rowCount()"), 1000);
    EXPECT_EQ(page.Evaluate("new Set(page.view.shown).size"), 1000);
}

TEST_F(FilePage, IsUsedByKeyboard) {
    Show(Sample());
    page.Press("j");
    EXPECT_EQ(Selected(), "1");
    page.Press("ArrowDown");
    page.Press("ArrowDown");
    EXPECT_EQ(Selected(), "3");
    page.Press("k");
    EXPECT_EQ(Selected(), "2");
    page.Press("End");
    EXPECT_EQ(Selected(), "5");
    page.Press("/");
    for (const char* letter : {"e", "v", "e", "n", "t"}) page.Press(letter, letter);
    page.Await("byId('state').textContent === '1 of 5 records'");
    page.Press("Escape");
    page.Press("x", "x");
    page.Await("byId('state').textContent === '5 records'");
    for (const auto& [key, view] : {std::pair{"2", "ladder"}, std::pair{"3", "statistics"},
                                    std::pair{"4", "television"}, std::pair{"1", "rows"}}) {
        page.Press(key, key);
        EXPECT_TRUE(page.Evaluate("byId('view-" + std::string(view) + "').checkVisibility()").asBool()) << view;
        EXPECT_EQ(page.Text("document.querySelector('[role=tab][aria-selected=true]').dataset.view"), view);
    }
    page.Press("?", "?");
    EXPECT_TRUE(page.Evaluate("byId('keys').open").asBool());
    page.Press("Escape");
    page.Await("!byId('keys').open");
    EXPECT_THAT(page.Complaints(), IsEmpty());
}

TEST_F(FilePage, IsDarkOrLightAsTheSystemAndTheUserWant) {
    Show(Sample());
    const char* const background = "getComputedStyle(document.body).backgroundColor";
    EXPECT_EQ(page.Text(background), "rgb(255, 255, 255)");
    page.PreferTheme("dark");
    EXPECT_EQ(page.Text(background), "rgb(22, 24, 29)");
    page.Press("d", "d");
    EXPECT_EQ(page.Text(background), "rgb(255, 255, 255)");
    page.Press("d", "d");
    page.PreferTheme("light");
    EXPECT_EQ(page.Text(background), "rgb(22, 24, 29)");
}

TEST_F(FilePage, CountsWhatTheCommandLineCounts) {
    const std::vector<Record> records = Sample();
    traffic::Statistics expected;
    for (const Record& record : records) expected.Add(record);
    Show(records);
    const Json::Value counted = page.Evaluate("statisticsOf(page.view).operations");
    ASSERT_EQ(counted.size(), expected.Operations().size());
    for (const Json::Value& entry : counted) {
        const auto& operation = expected.Operations().at(entry["name"].asString());
        EXPECT_EQ(entry["count"].asUInt64(), operation.calls) << entry["name"].asString();
        EXPECT_EQ(entry["errors"].asUInt64(), operation.errors) << entry["name"].asString();
        EXPECT_EQ(entry["bytes"].asUInt64(), operation.bytes) << entry["name"].asString();
        const bool none = operation.durations.Count() == 0;
        EXPECT_EQ(entry["max"].asInt64(), none ? -1 : static_cast<int64_t>(operation.durations.Longest()));
    }
    page.Press("3", "3");
    EXPECT_THAT(Texts("#view-statistics .links li"), testing::Contains(HasSubstr("2.50 s video_broadcast.SetChannel")));
}

TEST_F(FilePage, DrawsALadderOfWhatIsShown) {
    Show(Sample());
    page.Evaluate("page.filterBy('op:SetChannel | event')");
    page.Await("page.view.rowCount() === 3");
    page.Press("l", "l");
    EXPECT_THAT(
        Texts("#view-ladder .step .label"),
        ElementsAre(HasSubstr("video_broadcast.SetChannel"), "SetChannel: 0", HasSubstr("video_broadcast.SetChannel"),
                    HasSubstr("channel_config.changed"), HasSubstr("SetChannel: ret -1")));
    EXPECT_EQ(Texts("#view-ladder text.gap"), std::vector<std::string>{"2.40 s later"});
    page.Evaluate("document.querySelector('#view-ladder .step.error').dispatchEvent(new MouseEvent('click'))");
    EXPECT_EQ(Selected(), "3");
}

TEST_F(FilePage, SaysThatALadderDoesNotHaveAllMessages) {
    Show(Numbered(std::vector<Record>(401, GetName())));
    page.Press("l", "l");
    EXPECT_EQ(
        Texts("#view-ladder p.hint"),
        std::vector<std::string>{"400 of 401 messages, around the selected one; a filter selects an object or a span"});
    EXPECT_EQ(Texts("#view-ladder .step").size(), 800u);
}

TEST_F(FilePage, SelectsASpanOfTime) {
    Show(Sample());
    page.Evaluate("page.setSpan({begin: page.view.row(1).wall, end: page.view.row(2).wall})");
    page.Await("byId('state').textContent === '2 of 5 records'");
    EXPECT_EQ(page.Text("byId('span').textContent"), "12:47:25.658 to 12:47:25.758 ×");
    page.Press("Escape");
    page.Await("byId('state').textContent === '5 records'");
}

}  // namespace

}  // namespace hbbtv::test
