// Searches over the wire: every operation, the states in events, pages, and what is refused.
#include <ctime>

#include "programmes/search_fixture.h"

namespace hbbtv::test {
namespace {

class Searches : public SearchFixture {
  protected:
    std::string Named(const std::string& part) { return Query("Programme.name", kContains, part); }

    // Returns the titles that the search finds.
    std::string Found(const std::string& query) {
        EXPECT_EQ(SetQuery(mSearch, query), 0);
        return ResultsAfterChange();
    }
    std::string Found(const std::string& property, int comparison, const std::string& value) {
        return Found(Query("Programme." + property, comparison, value));
    }
};

TEST_F(Searches, FindProgrammesByAWordOfTheirTitle) {
    EXPECT_EQ(Found("name", kContains, "news"), "Evening News, Late News");
    EXPECT_EQ(Found("name", kContains, "LAST"), "The Last Ferry");
    EXPECT_EQ(Found("name", kContains, "Newspaper"), "");
}

TEST_F(Searches, KnowTheSevenComparisons) {
    EXPECT_EQ(Found("name", kEqual, "Late News"), "Late News");
    EXPECT_EQ(Found("genre", kNotEqual, "News"),
              "Sports Live, Night Music, Kitchen Table, Old Letters, The Last Ferry");
    EXPECT_EQ(Found("duration", kGreater, "5400"), "Sports Live, Night Music, The Last Ferry");
    EXPECT_EQ(Found("duration", kGreaterOrEqual, "5400"), "Sports Live, Night Music, Old Letters, The Last Ferry");
    EXPECT_EQ(Found("startTime", kLess, "1767637800"), "Evening News, Sports Live, Night Music");
    EXPECT_EQ(Found("startTime", kLessOrEqual, "1767637800"), "Evening News, Sports Live, Night Music, Kitchen Table");
    EXPECT_EQ(Found("longDescription", kContains, "one HOUR"), "Kitchen Table");
}

TEST_F(Searches, KnowChannelsGenresAndRatings) {
    EXPECT_EQ(Found("channelID", kEqual, "ccid:1.1.2"), "Sports Live, The Last Ferry");
    EXPECT_EQ(Found("channelID", kEqual, "ccid:2.1.7"), "Night Music");
    EXPECT_EQ(Found("genre", kEqual, "Cooking"), "Kitchen Table");
    EXPECT_EQ(Found("parentalRatings", kGreaterOrEqual, "12"), "Old Letters, The Last Ferry");
    EXPECT_EQ(Found("parentalRatings", kGreater, "12"), "The Last Ferry");
    EXPECT_EQ(Found("description", kContains, "postwoman"), "Old Letters");
}

TEST_F(Searches, CombineQueries) {
    const std::string film = Query("Programme.genre", kEqual, "Film");
    const std::string news = Query("Programme.genre", kEqual, "News");
    const std::string late = Query("Programme.startTime", kGreaterOrEqual, "1767643200");
    EXPECT_EQ(Found(And(film, late)), "The Last Ferry");
    EXPECT_EQ(Found(Or(film, news)), "Evening News, Old Letters, The Last Ferry, Late News");
    const std::string neither = Not(Or(film, news));
    EXPECT_EQ(Found(neither), "Sports Live, Night Music, Kitchen Table");
    const std::string nested = And(Not(late), Or(news, And(film, film)));
    EXPECT_EQ(Found(nested), "Evening News, Old Letters");
}

TEST_F(Searches, KeepWorkingWithQueriesThatWereReleased) {
    const std::string film = Query("Programme.genre", kEqual, "Film");
    const std::string both = And(film, Not(Named("ferry")));
    EXPECT_EQ(SetQuery(mSearch, both), 0);
    for (const std::string& query : {film, both}) {
        EXPECT_EQ(RetOf(query, "Query_Release"), 0);
        EXPECT_EQ(RetOf(query, "Query_Release"), -1);
        EXPECT_EQ(SetQuery(mSearch, query), -1);
        ExpectRefused({"Query_Not", "Query_And", "Query_Or"}, {query}, {{"in_handle2", query}});
    }
    EXPECT_EQ(Results(), "Old Letters");
}

TEST_F(Searches, ShowTheirResultsInPages) {
    EXPECT_EQ(SetQuery(mSearch, Query("Programme.genre", kNotEqual, "Film")), 0);
    struct {
        unsigned offset, count;
        const char* titles;
    } const pages[] = {{0, 2, "Evening News, Sports Live"},
                       {2, 2, "Night Music, Kitchen Table"},
                       {4, 2, "Late News"},
                       {5, 2, ""},
                       {0, 0, ""},
                       {3, 4294967295u, "Kitchen Table, Late News"},
                       {4294967295u, 4294967295u, ""}};
    for (const auto& page : pages) {
        EXPECT_EQ(GetResults(mResults, page.offset, page.count), 0);
        EXPECT_EQ(NextState(), "0");
        EXPECT_EQ(Titles(mResults), page.titles) << page.offset;
        EXPECT_EQ(GetOf(mResults, "SearchResults_GetOffset").asUInt(), page.offset);
        EXPECT_EQ(TotalSize(mResults), 5u);
    }
    EXPECT_EQ(GetResults(mResults, 1, 2), 0);
    EXPECT_EQ(NextState(), "0");
    EXPECT_EQ(TitleOf(HandleOf(mResults, "SearchResults_GetProgramme", {{"index", 1u}})), "Night Music");
    for (const unsigned index : {2u, 4294967295u})
        EXPECT_EQ(RetOf(mResults, "SearchResults_GetProgramme", {{"index", index}}), -1);
}

TEST_F(Searches, HaveNoResultsBeforeTheyFinish) {
    EXPECT_EQ(GetOf(mResults, "SearchResults_GetOffset"), 0);
    EXPECT_EQ(GetOf(mResults, "SearchResults_GetLength"), 0);
    EXPECT_EQ(TotalSize(mResults), 0u);
    EXPECT_EQ(RetOf(mResults, "SearchResults_GetProgramme", {{"index", 0u}}), -1);
}

TEST_F(Searches, KeepToChannels) {
    EXPECT_EQ(SetQuery(mSearch, Query("Programme.genre", kEqual, "Film")), 0);
    EXPECT_EQ(Constrain(mSearch, ChannelOf(2)), 0);
    EXPECT_EQ(Results(), "The Last Ferry");
    EXPECT_EQ(Constrain(mSearch, ChannelOf(1)), 0);
    EXPECT_EQ(NextState(), "3");
    EXPECT_EQ(Results(), "Old Letters, The Last Ferry");
    EXPECT_EQ(Constrain(mSearch, "0x1234567"), -1);
    EXPECT_EQ(Titles(mResults), "Old Letters, The Last Ferry") << "what is refused changes nothing";
    EXPECT_EQ(Constrain(mSearch, Channel(NewObject(), 77)), 0);
    EXPECT_EQ(SetQuery(mSearch, Named("e")), 0);
    EXPECT_EQ(NextState(), "3");
    EXPECT_EQ(Constrain(mSearch, Channel(NewObject(), 77)), 0) << "a channel that is not on air";
    EXPECT_EQ(Results(), "");
    EXPECT_EQ(Constrain(mSearch, ""), 0) << "no channel: no constraints";
    EXPECT_EQ(NextState(), "3");
    Finish();
    EXPECT_EQ(TotalSize(mResults), 6u) << "all but Night Music have an e";
}

TEST_F(Searches, FindTheProgrammesOfAChannelFromATimeOn) {
    const std::string one = ChannelOf(1);
    const auto found = [&](const Json::Value& time, int count) {
        EXPECT_EQ(FindFrom(mSearch, one, time, count), 0);
        return ResultsAfterChange();
    };
    EXPECT_EQ(found(kSixOClock + 1800.0, 2), "Kitchen Table, Old Letters");
    EXPECT_EQ(found(kSixOClock + 1799.0, 2), "Evening News, Kitchen Table") << "the one that runs then is the first";
    EXPECT_EQ(found(kSixOClock, 2147483647), "Evening News, Kitchen Table, Old Letters, Late News");
    EXPECT_EQ(found(0.0, 1), "Evening News");
    EXPECT_EQ(found(0.0, 0), "");
    EXPECT_EQ(found(4294967295.0, 9), "");
}

TEST_F(Searches, RefuseInvalidTimesAndCounts) {
    const std::string one = ChannelOf(1);
    for (const double time : {-1.0, 0.5, 4294967296.0, 1e300}) EXPECT_EQ(FindFrom(mSearch, one, time, 1), -1) << time;
    EXPECT_EQ(FindFrom(mSearch, one, "1767636000", 1), -1);
    EXPECT_EQ(FindFrom(mSearch, one, 0.0, -1), -1);
    EXPECT_EQ(FindFrom(mSearch, "", 0.0, 1), -1);
    EXPECT_EQ(RetOf(mResults, "SearchResults_GetResults", {{"offset", -1}, {"count", 1u}}), -1);
    EXPECT_EQ(RetOf(mResults, "SearchResults_GetResults", {{"offset", 0u}, {"count", Json::UInt64{4294967296}}}), -1);
    EXPECT_EQ(RetOf(mResults, "SearchResults_GetResults", {{"offset", 0u}}), -1);
}

TEST_F(Searches, AreIdleAgainWhenTheirQueryChangesOrTheyAreAborted) {
    Finish(Named("news"));
    EXPECT_EQ(SetQuery(mSearch, Named("table")), 0);
    EXPECT_EQ(NextState(), "3");
    EXPECT_EQ(TotalSize(mResults), 0u);
    EXPECT_EQ(Results(), "Kitchen Table");
    EXPECT_EQ(RetOf(mResults, "SearchResults_Abort"), 0);
    EXPECT_EQ(NextState(), "3");
    EXPECT_EQ(Titles(mResults), "");
    EXPECT_EQ(RetOf(mResults, "SearchResults_Abort"), 0) << "nothing to abort, so no event";
    Finish();
    EXPECT_EQ(TotalSize(mResults), 7u) << "Abort took the query away";
}

TEST_F(Searches, HaveATarget) {
    for (const unsigned target : {1u, 2u, 3u}) {
        const std::string search = HandleOf(mManager, "SearchManager_CreateSearch", {{"target", target}});
        EXPECT_EQ(GetOf(search, "MetaSearch_GetSearchTarget").asUInt(), target);
    }
    for (const unsigned target : {0u, 4u, 4294967295u}) {
        EXPECT_EQ(RetOf(mManager, "SearchManager_CreateSearch", {{"target", target}}), -1) << target;
    }
    const std::string onDemand = HandleOf(mManager, "SearchManager_CreateSearch", {{"target", 2u}});
    const std::string results = HandleOf(onDemand, "MetaSearch_GetResult");
    EXPECT_EQ(GetResults(results), 0);
    EXPECT_EQ(NextState(), "0 of " + onDemand);
    EXPECT_EQ(TotalSize(results), 0u) << "there is nothing on demand";
}

TEST_F(Searches, DoNotDisturbEachOther) {
    const std::string other = NewSearch(mManager);
    const std::string otherResults = HandleOf(other, "MetaSearch_GetResult");
    EXPECT_EQ(SetQuery(mSearch, Named("news")), 0);
    EXPECT_EQ(SetQuery(other, Named("ferry")), 0);
    Finish();
    EXPECT_EQ(GetResults(otherResults), 0);
    EXPECT_EQ(NextState(), "0 of " + other);
    EXPECT_EQ(Titles(otherResults), "The Last Ferry");
    EXPECT_EQ(Titles(mResults), "Evening News, Late News");
}

TEST_F(Searches, SendEventsOnlyToThoseWhoRegistered) {
    const std::string silent = NewManager(false);
    const std::string search = NewSearch(silent);
    const std::string results = HandleOf(search, "MetaSearch_GetResult");
    EXPECT_EQ(SetQuery(search, Named("news")), 0);
    EXPECT_EQ(GetResults(results), 0);
    EXPECT_TRUE(WaitFor([&] { return TotalSize(results) == 2; }));
    EXPECT_EQ(GetResults(mResults), 0);
    EXPECT_EQ(NextState(), "0") << "the first event is that of the registered manager's search";
    EXPECT_EQ(RetOf(silent, "SearchManager_RegisterCallback", {{"context", ""}}), 0);
    EXPECT_EQ(RetOf(results, "SearchResults_Abort"), 0);
    EXPECT_EQ(NextState(), "3 of " + search);
}

TEST_F(Searches, HaveOneResultSetWhoseHandleCanBeReleased) {
    EXPECT_EQ(HandleOf(mSearch, "MetaSearch_GetResult"), mResults);
    Finish(Named("table"));
    EXPECT_EQ(RetOf(mResults, "SearchResults_Release"), 0);
    ExpectRefused({"SearchResults_Release", "SearchResults_GetOffset", "SearchResults_GetLength",
                   "SearchResults_GetTotalSize", "SearchResults_Abort"},
                  {mResults});
    EXPECT_EQ(RetOf(mResults, "SearchResults_GetProgramme", {{"index", 0u}}), -1);
    EXPECT_EQ(GetResults(mResults), -1);
    const std::string again = HandleOf(mSearch, "MetaSearch_GetResult");
    EXPECT_NE(again, mResults);
    EXPECT_EQ(Titles(again), "Kitchen Table");
}

TEST_F(Searches, KeepTheirResultsWhenDestroyed) {
    Finish(Named("table"));
    const std::string query = Named("news");
    EXPECT_EQ(RetOf(mSearch, "SearchManager_DestroySearch"), 0);
    ExpectRefused({"SearchManager_DestroySearch", "MetaSearch_GetResult", "MetaSearch_GetSearchTarget"}, {mSearch});
    EXPECT_EQ(SetQuery(mSearch, query), -1);
    EXPECT_EQ(Constrain(mSearch, ChannelOf(1)), -1);
    EXPECT_EQ(FindFrom(mSearch, ChannelOf(1), 0.0, 1), -1);
    EXPECT_EQ(RetOf(mSearch, "MetaSearch_CreateQuery", {{"field", "Programme.name"}, {"comp", 6}, {"value", "x"}}), -1);
    EXPECT_EQ(Titles(mResults), "Kitchen Table");
    EXPECT_EQ(GetResults(mResults), -1);
    EXPECT_EQ(RetOf(mResults, "SearchResults_Release"), 0);
    EXPECT_EQ(RetOf(mResults, "SearchResults_GetLength"), -1);
}

TEST_F(Searches, GoWithTheirManager) {
    const std::string other = NewManager();
    const std::string search = NewSearch(other);
    EXPECT_EQ(RetOf(mManager, "SearchManager_Destroy"), 0);
    ExpectRefused({"SearchManager_Destroy", "SearchManager_RegisterCallback", "SearchManager_CreateSearch"}, {mManager},
                  {{"context", ""}, {"target", 1u}});
    EXPECT_EQ(RetOf(mSearch, "MetaSearch_GetSearchTarget"), -1);
    EXPECT_EQ(GetResults(mResults), -1);
    EXPECT_EQ(GetOf(search, "MetaSearch_GetSearchTarget").asUInt(), 1u) << "those of other managers stay";
}

TEST_F(Searches, RefuseHandlesOfAnotherKind) {
    const std::string query = Named("news");
    EXPECT_EQ(RetOf(mSearch, "SearchManager_Destroy"), -1);
    EXPECT_EQ(RetOf(mManager, "SearchManager_DestroySearch"), -1);
    EXPECT_EQ(RetOf(mResults, "MetaSearch_GetSearchTarget"), -1);
    EXPECT_EQ(RetOf(mSearch, "SearchResults_GetLength"), -1);
    EXPECT_EQ(RetOf(mSearch, "Query_Release"), -1);
    EXPECT_EQ(RetOf(query, "SearchResults_Release"), -1);
    EXPECT_EQ(SetQuery(query, mSearch), -1);
    EXPECT_EQ(RetOf("", "SearchResults_GetLength"), -1);
    ExpectOtherCodesRefused("search_manager", mSearch);
}

TEST_F(Searches, RefuseInvalidQueries) {
    const auto refused = [this](const char* field, const Json::Value& comparison, const Json::Value& value) {
        const Members members{{"field", field}, {"comp", comparison}, {"value", value}};
        EXPECT_EQ(RetOf(mSearch, "MetaSearch_CreateQuery", members), -1)
            << field << comparison.toStyledString() << value.toStyledString().substr(0, 40);
    };
    for (const char* field : {"Programme.colour", "Programme.Name", "name", ""}) refused(field, kEqual, "x");
    for (const Json::Value& comparison : {Json::Value(7), Json::Value(-1), Json::Value("6")}) {
        refused("Programme.name", comparison, "x");
    }
    refused("Programme.name", kContains, 7);
    refused("Programme.startTime", kGreater, "soon");
    refused("Programme.name", kContains, std::string(1025, 'x'));
    EXPECT_TRUE(mSimulator->WaitForOutput("there is no field \"Programme.Name\"; did you mean \"Programme.name\"?"))
        << mSimulator->Output();
}

TEST_F(Searches, OfAQueryWithinItselfHaveAnEnd) {
    std::string query = Named("news");
    int rounds = 0;
    for (; rounds < 100; ++rounds) {
        const Json::Value reply = AskOf(query, "Query_And", {{"in_handle2", query}});
        if (reply["ret"] != 0) break;
        query = reply["out_handle"].asString();
    }
    EXPECT_EQ(rounds, 8) << "511 comparisons and operators, the next one would have 1023";
    EXPECT_EQ(Found(query), "Evening News, Late News");
    for (rounds = 0; rounds < 1000; ++rounds) {
        const Json::Value reply = AskOf(query, "Query_Not");
        if (reply["ret"] != 0) break;
        query = reply["out_handle"].asString();
    }
    EXPECT_EQ(rounds, 489) << "up to 1000";
    EXPECT_EQ(RetOf(query, "Query_Release"), 0);
}

// Returns a programme for every minute, alternating between One and Two, so many that a search takes a while.
std::string ManyProgrammes(int count) {
    const auto time = [](int minute) {
        const std::time_t seconds = kSixOClock + 60 * static_cast<std::time_t>(minute);
        std::tm parts{};
        gmtime_r(&seconds, &parts);
        char text[32];
        std::strftime(text, sizeof(text), "%Y%m%d%H%M%S +0000", &parts);
        return std::string(text);
    };
    std::string text = "<tv>\n";
    for (int i = 0; i < count; ++i) {
        text += "<programme start=\"" + time(i) + "\" stop=\"" + time(i + 1) + "\" channel=\"" +
                (i % 2 == 0 ? "one.tv" : "two.tv") + "\"><title>Number " + std::to_string(i) +
                "</title><desc>The same long text for each of them.</desc></programme>\n";
    }
    return text + "</tv>\n";
}

class LongSearches : public Searches {
  protected:
    static constexpr int kCount = 100000;

    void SetUp() override { StartSearching(ManyProgrammes(kCount)); }

    // Returns a query that looks at every programme often.
    std::string SlowQuery() {
        std::string query = Query("Programme.longDescription", kContains, "a text that is not there");
        for (int i = 0; i < 8; ++i) query = Or(query, query);
        return query;
    }
};

TEST_F(LongSearches, LeaveTimeForEverythingElseAndCanBeAborted) {
    EXPECT_EQ(SetQuery(mSearch, SlowQuery()), 0);
    EXPECT_EQ(GetResults(mResults), 0);
    EXPECT_EQ(TotalSize(mResults), 0u);
    const std::string vb = NewObject();
    for (int i = 0; i < 20; ++i) EXPECT_EQ(State(vb), 0) << "other families answer";
    EXPECT_EQ(RetOf(mResults, "SearchResults_Abort"), 0);
    EXPECT_EQ(NextState(), "3") << "it was not finished before";
    EXPECT_EQ(SetQuery(mSearch, SlowQuery()), 0);
    EXPECT_EQ(GetResults(mResults), 0);
    EXPECT_EQ(SetQuery(mSearch, Query("Programme.name", kEqual, "Number 99999")), 0);
    EXPECT_EQ(NextState(), "3") << "its query changed";
    EXPECT_EQ(Results(), "Number 99999");
}

TEST_F(LongSearches, EndSilentlyWhenTheyAreDestroyed) {
    EXPECT_EQ(SetQuery(mSearch, SlowQuery()), 0);
    EXPECT_EQ(GetResults(mResults), 0);
    EXPECT_EQ(RetOf(mSearch, "SearchManager_DestroySearch"), 0);
    mSearch = NewSearch(mManager);
    const std::string results = HandleOf(mSearch, "MetaSearch_GetResult");
    EXPECT_EQ(SetQuery(mSearch, Named("Number 4711")), 0);
    EXPECT_EQ(GetResults(results), 0);
    EXPECT_EQ(NextState(), "0") << "the first event is that of the new search";
    EXPECT_EQ(TotalSize(results), 11u) << "4711 and 47110 to 47119";
}

TEST_F(LongSearches, ReturnNoMoreResultsThanTheWireCanExpress) {
    EXPECT_EQ(GetResults(mResults, 65535, 4294967295u), 0);
    EXPECT_EQ(NextState(), "0");
    EXPECT_EQ(TotalSize(mResults), 65536u);
    EXPECT_EQ(Titles(mResults), "Number 99998") << "all those on One, and on Two up to Number 31071";
}

TEST_F(LongSearches, HaveNoResourcesWhenTooManyAreUnderWay) {
    const std::string query = SlowQuery();
    std::string last;
    for (int i = 0; i < 21; ++i) {
        last = NewSearch(mManager);
        EXPECT_EQ(SetQuery(last, query), 0);
        EXPECT_EQ(GetResults(HandleOf(last, "MetaSearch_GetResult")), 0);
    }
    EXPECT_EQ(NextState(), "4 of " + last);
    EXPECT_EQ(RetOf(mManager, "SearchManager_Destroy"), 0) << "and so they all end";
}

}  // namespace
}  // namespace hbbtv::test
