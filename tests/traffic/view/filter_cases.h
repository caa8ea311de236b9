// Filters and what they select, for both programs that read them: the command line and the page.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "sample_records.h"

namespace hbbtv::traffic::test {

struct FilterCase {
    std::string filter;
    std::string passes;  // names of the records that pass, in their order
};

struct FilterProblem {
    std::string filter;
    std::string problem;
};

// The records that each case is tried on.
inline std::vector<std::pair<std::string, Record>> FilteredRecords() {
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
    Record other = Exchange("private_socket", R"({"a":1,"tabid":3})", "no JSON");
    return {{"name", GetName()}, {"set", SetChannel(0, 5000)}, {"bent", bent}, {"event", ChangedEvent()},
            {"open", open},      {"damaged", damaged},         {"note", note}, {"other", other}};
}

inline std::vector<FilterCase> FilterCases() {
    return {
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
        {"tab:3", "other"},
        {"tab:4", ""},
        {"tab!=3", "name set bent event open damaged note"},
        {"app:3", ""},
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
}

inline std::vector<FilterCase> CombinedFilterCases() {
    return {
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
}

inline std::vector<FilterProblem> FilterProblems() {
    return {
        {"famly:channel",
         "character 1: unknown field \"famly\"; did you mean \"family\"? (text with \":\" in it has to be in quotes)"},
        {"event & family:chanel",
         "character 9: unknown family \"chanel\"; did you mean \"channel\"? (see `hbbtvctl list`)"},
        {"op:GetNam", "character 1: unknown operation or event \"GetNam\"; did you mean \"GetName\"?"},
        {"ms>fast", "character 1: \"fast\" is not a number"},
        {"ms>", "character 4: a value is missing after ms"},
        {"ms~5", "character 1: \"ms\" cannot be compared by \"~\""},
        {"family>channel", "character 1: \"family\" cannot be compared by \">\""},
        {"handle:me", "character 1: \"me\" is not a handle, such as 0x1388f0af"},
        {"(event", "character 1: \"(\" without \")\""},
        {"event)", "character 6: \")\" without \"(\""},
        {"event &", "character 8: a word is missing"},
        {"| event", "character 1: a word is missing"},
        {"\"event", "character 1: the quote is not closed"},
        {":5", "character 1: a field is missing before \":\""},
        {std::string(5000, '!') + "event", "character 101: nested too deeply"},
        {std::string(5000, '(') + "event", "character 101: nested too deeply"},
    };
}

}  // namespace hbbtv::traffic::test
