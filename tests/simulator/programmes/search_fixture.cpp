#include "programmes/search_fixture.h"

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

void SearchFixture::StartSearching(const std::string& programmes) {
    mFamily = "search_manager";
    mLineUp = Replaced(kChannelLineUp, R"("name": "Two",)", R"("name": "Two", "programmeId": "two.tv",)");
    mLineUp = Replaced(mLineUp, R"("name": "Wave",)", R"("name": "Wave", "programmeId": "wave.radio",)");
    WriteFile(mDirectory / "programmes.xml", programmes);
    Start({"--programmes", mDirectory / "programmes.xml"});
    ServeEvents("search_manager");
    mManager = NewManager();
    mSearch = NewSearch(mManager);
    mResults = HandleOf(mSearch, "MetaSearch_GetResult");
}

std::string SearchFixture::NewManager(bool registered) {
    const std::string manager = Handle("SearchManager_Create");
    if (registered) {
        EXPECT_EQ(RetOf(manager, "SearchManager_RegisterCallback", {{"context", "0xc0de"}}), 0);
    }
    return manager;
}

std::string SearchFixture::Query(const std::string& field, int comparison, const std::string& value) {
    return HandleOf(mSearch, "MetaSearch_CreateQuery", {{"field", field}, {"comp", comparison}, {"value", value}});
}

int SearchFixture::SetQuery(const std::string& search, const std::string& query) {
    return RetOf(search, "MetaSearch_SetQuery", {{"query_handle", query}});
}

int SearchFixture::Constrain(const std::string& search, const std::string& channel) {
    return RetOf(search, "MetaSearch_AddChannelConstraint", {{"channel_handle", channel}});
}

int SearchFixture::FindFrom(const std::string& search, const std::string& channel, const Json::Value& time, int count) {
    return RetOf(search, "MetaSearch_FindProgrammesFromStream",
                 {{"channel_handle", channel}, {"time", time}, {"count", count}});
}

int SearchFixture::GetResults(const std::string& results, unsigned offset, unsigned count) {
    return RetOf(results, "SearchResults_GetResults", {{"offset", offset}, {"count", count}});
}

std::string SearchFixture::NextState() {
    const Json::Value event = NextEventOf("search_manager").members;
    const std::string search = event["searchHandle"].asString();
    return event["state"].asString() + (search == mSearch ? "" : " of " + search);
}

void SearchFixture::Finish() {
    EXPECT_EQ(GetResults(mResults), 0);
    EXPECT_EQ(NextState(), "0");
}

void SearchFixture::Finish(const std::string& query) {
    EXPECT_EQ(SetQuery(mSearch, query), 0);
    Finish();
}

std::string SearchFixture::Results() {
    Finish();
    return Titles(mResults);
}

std::string SearchFixture::ResultsAfterChange() {
    EXPECT_EQ(GetResults(mResults), 0);
    std::string state = NextState();
    if (state == "3") state = NextState();
    EXPECT_EQ(state, "0");
    return Titles(mResults);
}

std::string SearchFixture::Titles(const std::string& results) {
    const unsigned length = GetOf(results, "SearchResults_GetLength").asUInt();
    std::string titles;
    for (unsigned i = 0; i < length; ++i) {
        titles += (i == 0 ? "" : ", ") + TitleOf(HandleOf(results, "SearchResults_GetProgramme", {{"index", i}}));
    }
    return titles;
}

}  // namespace hbbtv::test
