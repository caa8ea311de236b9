// The fixture around searches: see search_platform.h.
#include "search_platform.h"

namespace hbbtv::test {

const char* const kSearchedProgrammes = R"(<?xml version="1.0" encoding="UTF-8"?>
<tv>
  <programme start="20260105180000 +0000" stop="20260105183000 +0000" channel="one.tv">
    <title lang="en">Evening News</title><desc>What happened today.</desc><category>News</category>
  </programme>
  <programme start="20260105183000 +0000" stop="20260105191500 +0000" channel="one.tv">
    <title lang="en">Kitchen Table</title><desc>Three courses, ONE hour.</desc>
    <category>Leisure</category><category>Cooking</category>
  </programme>
  <programme start="20260105191500 +0000" stop="20260105204500 +0000" channel="one.tv">
    <title lang="en">Old Letters</title><desc>A postwoman finds letters.</desc><category>Film</category>
    <rating system="FSK"><value>12</value></rating>
  </programme>
  <programme start="20260105204500 +0000" stop="20260105210000 +0000" channel="one.tv">
    <title lang="en">Late News</title><desc>The last news of the day.</desc><category>News</category>
  </programme>
  <programme start="20260105180000 +0000" stop="20260105200000 +0000" channel="two.tv">
    <title lang="en">Sports Live</title><desc>The match of the day.</desc><category>Sport</category>
  </programme>
  <programme start="20260105200000 +0000" stop="20260105214500 +0000" channel="two.tv">
    <title lang="en">The Last Ferry</title><desc>A storm.</desc><category>Film</category>
    <rating system="FSK"><value>16</value></rating>
  </programme>
  <programme start="20260105180000 +0000" stop="20260105230000 +0000" channel="wave.radio">
    <title lang="en">Night Music</title><desc>Quiet.</desc><category>Music</category>
  </programme>
</tv>
)";

namespace {

std::string Replaced(std::string text, const std::string& old, const std::string& fresh) {
    const size_t at = text.find(old);
    EXPECT_NE(at, std::string::npos) << old;
    return text.replace(at, old.size(), fresh);
}

}  // namespace

void SearchPlatform::BeginSearching(const std::string& programmes, const std::vector<std::string>& options) {
    mLineUp = Replaced(kChannelLineUp, R"("name": "Two",)", R"("name": "Two", "programmeId": "two.tv",)");
    mLineUp = Replaced(mLineUp, R"("name": "Wave",)", R"("name": "Wave", "programmeId": "wave.radio",)");
    WriteFile(mDirectory / "programmes.xml", programmes);
    std::vector<std::string> all{"--programmes", mDirectory / "programmes.xml"};
    all.insert(all.end(), options.begin(), options.end());
    Begin(all);
    mSearchEvents = std::make_unique<LibraryStandIn>(mDirectory / "service_hbbtv_to_plugin_sm");
    mManager = NewManager();
    mSearch = NewSearch(mManager);
    mResults = Made(mSearch, kGetResult);
}

Json::Value SearchPlatform::AskedOf(const std::string& handle, int method, Members members) {
    members["in_handle"] = handle;
    return Asked(method, members);
}

std::string SearchPlatform::Made(const std::string& handle, int method, const Members& members) {
    const Json::Value reply = AskedOf(handle, method, members);
    EXPECT_EQ(reply["ret"], 0) << "method " << method << "\n" << mSimulator->Output();
    EXPECT_EQ(reply["out_handle"].asString().substr(0, 2), "0x") << "method " << method;
    return reply["out_handle"].asString();
}

std::string SearchPlatform::NewManager(bool registered) {
    const std::string manager = Made("", kManagerCreate);
    if (registered) {
        EXPECT_EQ(RetOf(manager, kManagerRegisterCallback, {{"context", "0xc0de"}}), 0);
    }
    return manager;
}

std::string SearchPlatform::Query(const std::string& field, int comparison, const std::string& value) {
    return Made(mSearch, kCreateQuery, {{"field", field}, {"comp", comparison}, {"value", value}});
}

std::string SearchPlatform::Combined(int method, const std::string& first, const std::string& second) {
    const Json::Value reply = Asked(method, {{"in_handle1", first}, {"in_handle2", second}});
    EXPECT_EQ(reply["ret"], 0);
    return reply["out_handle"].asString();
}

int SearchPlatform::SetQuery(const std::string& search, const std::string& query) {
    return Asked(kSetQuery, {{"search_handle", search}, {"query_handle", query}})["ret"].asInt();
}

int SearchPlatform::Constrain(const std::string& search, const std::string& channel) {
    return Asked(kAddChannelConstraint, {{"search_handle", search}, {"channel_handle", channel}})["ret"].asInt();
}

int SearchPlatform::FindFrom(const std::string& search, const std::string& channel, const Json::Value& time,
                             int count) {
    const Members members{{"search_handle", search}, {"channel_handle", channel}, {"time", time}, {"count", count}};
    return Asked(kFindProgrammesFromStream, members)["ret"].asInt();
}

int SearchPlatform::GetResults(const std::string& results, unsigned offset, unsigned count) {
    return RetOf(results, kGetResults, {{"offset", offset}, {"count", count}});
}

std::string SearchPlatform::NextState() {
    const Json::Value event = NextEventOf(*mSearchEvents, 8);
    EXPECT_EQ(event.getMemberNames(), (std::vector<std::string>{"event", "searchHandle", "state"}));
    EXPECT_EQ(event["event"], 0);
    const std::string search = event["searchHandle"].asString();
    return std::to_string(event["state"].asInt()) + (search == mSearch ? "" : " of " + search);
}

std::string SearchPlatform::TitleOf(const std::string& programme) {
    return AskAt(kToProgramme, 1, {{"handle", programme}})["out_name"].asString();
}

std::string SearchPlatform::Titles(const std::string& results) {
    const unsigned length = Number(results, kGetLength, "length");
    std::string titles;
    for (unsigned i = 0; i < length; ++i) {
        titles += (i == 0 ? "" : ", ") + TitleOf(Made(results, kGetProgramme, {{"index", i}}));
    }
    return titles;
}

std::string SearchPlatform::Found(const std::string& query) {
    EXPECT_EQ(SetQuery(mSearch, query), 0);
    EXPECT_EQ(GetResults(mResults), 0);
    std::string state = NextState();
    if (state == "3") state = NextState();  // what was found before is gone
    return state == "0" ? Titles(mResults) : "event " + state;
}

}  // namespace hbbtv::test
