// Filters: what passes, and above all what does not.
#include "traffic/view/filter.h"

#include <gtest/gtest.h>

#include "common/failure.h"
#include "sample_records.h"

namespace hbbtv::traffic::test {
namespace {

bool Passes(const std::string& filter, const Record& record) {
    return Filter(filter).Matches(record);
}

struct Row {
    const char* filter;
    const char* passes;  // names of the records below that pass, in their order
};

// The records that each row is tried on.
std::vector<std::pair<std::string, Record>> Sample() {
    Record open = GetName();
    open.reply.reset();
    open.duration.reset();
    open.status.reset();
    open.open = true;
    Record damaged;
    damaged.kind = Record::Kind::Damaged;
    damaged.message.raw = "no message";
    Identify(damaged, kChannels);
    Record note;
    note.kind = Record::Kind::Note;
    note.note = "the disk is full";
    Record bent = SetChannel(-1, 2500000);
    bent.rule = "delay=2s";
    bent.library = {4711, 1000, "hbbtv-service"};
    Record other = Exchange("private_socket", R"({"a":1})", "no JSON");
    return {{"name", GetName()}, {"set", SetChannel(0, 5000)}, {"bent", bent}, {"event", ChangedEvent()},
            {"open", open},      {"damaged", damaged},         {"note", note}, {"other", other}};
}

std::string Passing(const std::string& filter) {
    std::string names;
    for (const auto& [name, record] : Sample()) {
        if (Passes(filter, record)) names += (names.empty() ? "" : " ") + name;
    }
    return names;
}

TEST(Filter, LetsThroughWhatItNamesAndNothingElse) {
    const Row rows[] = {
        {"", "name set bent event open damaged note other"},
        {"family:channel", "name open damaged"},
        {"family:IChannel", "name open damaged"},
        {"family!=channel", "set bent event note other"},
        {"family:channel*", "name event open damaged"},
        {"op:GetName", "name open"},
        {"op:getname", "name open"},
        {"op:OnChannelConfigEvent", "event"},
        {"op:Set*", "set bent"},
        {"op!=GetName", "set bent event damaged note other"},
        {"ms>5", "bent"},
        {"ms>=5", "set bent"},
        {"ms<1", "name other"},
        {"status:0", "name set"},
        {"status!=0", "bent"},
        {"!status:0", "bent event open damaged note other"},
        {"status<0", "bent"},
        {"handle:0x1388f0af", "name set bent open"},
        {"handle:1388F0AF", "name set bent open"},
        {"handle:0x1000", "set bent"},
        {"handle:0x1388f0a", ""},
        {"event", "event"},
        {"request", "name set bent open other"},
        {"one-way", "event"},
        {"open", "open"},
        {"error", "bent damaged other"},
        {"damaged", "damaged"},
        {"ruled", "bent"},
        {"kind:note", "note"},
        {"kind!=exchange", "damaged note"},
        {"socket:private_socket", "other"},
        {"socket~private", "other"},
        {"socket:private", ""},
        {"rule~delay", "bent"},
        {"note~disk", "note"},
        {"pid:4711", "bent"},
        {"pid:4712", ""},
        {"process:service", "bent"},
        {"code:13", "name open"},
        {"request.channel:0x1388f0af", "set bent"},
        {"request.trickPlay:false", "set bent"},
        {"request.event=0", "event"},
        {"request.event>0", ""},
        {"reply.name:\"das erste hd\"", "name"},
        {"reply.name~erste", "name"},
        {"reply.name:erste", ""},
        {"reply.name:*erste*", "name"},
        {"reply.absent!=1", ""},
        {"erste", "name"},
        {"\"Das Erste\"", "name"},
        {"setchannel", "set bent"},
        {"\"event\"", "event"},
        {"nothing-has-this", ""},
    };
    for (const Row& row : rows) EXPECT_EQ(Passing(row.filter), row.passes) << row.filter;
}

TEST(Filter, CombinesWordsAsPeopleExpect) {
    const Row rows[] = {
        {"family:channel & !op:GetName & ms>5", ""},
        {"family:video_broadcast & !op:GetName & ms>5", "bent"},
        {"family:video_broadcast !op:GetName ms>5", "bent"},
        {"family:video_broadcast&&!ms>5", "set"},
        {"event | error", "bent event damaged other"},
        {"event||error", "bent event damaged other"},
        {"event | error & ms>5", "bent event"},
        {"(event | error) & ms>5", "bent"},
        {"!(event | error)", "name set open note"},
        {"!!event", "event"},
        {"! event & open", "open"},
        {"op:GetName|op:SetChannel ms>5", "name bent open"},
    };
    for (const Row& row : rows) EXPECT_EQ(Passing(row.filter), row.passes) << row.filter;
}

std::string Problem(const std::string& filter) {
    try {
        Filter parsed(filter);
    } catch (const Failure& e) {
        EXPECT_EQ(e.Code(), kUsage);
        return e.what();
    }
    return "";
}

TEST(Filter, RefusesWhatItDoesNotUnderstandWithItsPlace) {
    EXPECT_EQ(Problem("famly:channel"),
              "filter, character 1: unknown field \"famly\"; did you mean \"family\"? (text with "
              "\":\" in it has to be in quotes)");
    EXPECT_EQ(Problem("event & family:chanel"),
              "filter, character 9: unknown family \"chanel\"; did you mean \"channel\"? (see `hbbtvctl list`)");
    EXPECT_EQ(Problem("op:GetNam"),
              "filter, character 1: unknown operation or event \"GetNam\"; did you mean \"GetName\"?");
    EXPECT_EQ(Problem("ms>fast"), "filter, character 1: \"fast\" is not a number");
    EXPECT_EQ(Problem("ms>"), "filter, character 4: a value is missing after ms");
    EXPECT_EQ(Problem("ms~5"), "filter, character 1: \"ms\" cannot be compared by \"~\"");
    EXPECT_EQ(Problem("family>channel"), "filter, character 1: \"family\" cannot be compared by \">\"");
    EXPECT_EQ(Problem("handle:me"), "filter, character 1: \"me\" is not a handle, such as 0x1388f0af");
    EXPECT_EQ(Problem("(event"), "filter, character 1: \"(\" without \")\"");
    EXPECT_EQ(Problem("event)"), "filter, character 6: \")\" without \"(\"");
    EXPECT_EQ(Problem("event &"), "filter, character 8: a word is missing");
    EXPECT_EQ(Problem("| event"), "filter, character 1: a word is missing");
    EXPECT_EQ(Problem("\"event"), "filter, character 1: the quote is not closed");
    EXPECT_EQ(Problem(":5"), "filter, character 1: a field is missing before \":\"");
    EXPECT_EQ(Problem(std::string(5000, '!') + "event"), "filter, character 101: nested too deeply");
    EXPECT_EQ(Problem(std::string(5000, '(') + "event"), "filter, character 101: nested too deeply");
}

TEST(Filter, KnowsWhetherItLooksIntoPayloads) {
    for (const char* filter : {"", "family:channel & ms>5", "event | !status:0", "op:GetName"}) {
        EXPECT_FALSE(Filter(filter).NeedsPayloads()) << filter;
    }
    for (const char* filter : {"erste", "handle:0x1", "ms>5 & !(event | reply.name:a)"}) {
        EXPECT_TRUE(Filter(filter).NeedsPayloads()) << filter;
    }
}

}  // namespace
}  // namespace hbbtv::traffic::test
