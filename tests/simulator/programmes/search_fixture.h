// The simulator with programmes to search, and the requests of the search manager in words.
#pragma once

#include "channels/channel_fixture.h"

namespace hbbtv::test {

// On the 5th of January 2026, UTC. Channel One:  18:00 Evening News,  18:30 Kitchen Table,  19:15 Old Letters,
// 20:45 Late News.  Two:  18:00 Sports Live,  20:00 The Last Ferry.  Wave:  18:00 Night Music.
extern const char* const kSearchedProgrammes;
constexpr int kSixOClock = 1767636000;  // 18:00 of that day

enum Comparison { kEqual, kNotEqual, kGreater, kGreaterOrEqual, kLess, kLessOrEqual, kContains };

class SearchFixture : public ChannelFixture {
  protected:
    void SetUp() override { StartSearching(kSearchedProgrammes); }

    // Starts the simulator with these programmes, and creates a manager with a registered callback and a search.
    void StartSearching(const std::string& programmes);

    std::string NewManager(bool registered = true);
    std::string NewSearch(const std::string& manager) {
        return HandleOf(manager, "SearchManager_CreateSearch", {{"target", 1u}});
    }
    std::string Query(const std::string& field, int comparison, const std::string& value);
    std::string And(const std::string& first, const std::string& second) {
        return HandleOf(first, "Query_And", {{"in_handle2", second}});
    }
    std::string Or(const std::string& first, const std::string& second) {
        return HandleOf(first, "Query_Or", {{"in_handle2", second}});
    }
    std::string Not(const std::string& query) { return HandleOf(query, "Query_Not"); }
    int SetQuery(const std::string& search, const std::string& query);
    int Constrain(const std::string& search, const std::string& channel);
    int FindFrom(const std::string& search, const std::string& channel, const Json::Value& time, int count);
    int GetResults(const std::string& results, unsigned offset = 0, unsigned count = 100);

    // Returns the state in the next event: "0", or "0 of 0x5a1f" when it is not about mSearch.
    std::string NextState();

    // Lets mSearch finish, first with another query.
    void Finish();
    void Finish(const std::string& query);

    // Lets mSearch finish and returns the titles that it finds.
    std::string Results();

    // Likewise; the search may announce first that earlier results are gone.
    std::string ResultsAfterChange();

    // Returns the titles of the page: "Evening News, Late News".
    std::string Titles(const std::string& results);
    std::string TitleOf(const std::string& programme) { return HandleOf(programme, "programme.GetName"); }

    unsigned TotalSize(const std::string& results) { return GetOf(results, "SearchResults_GetTotalSize").asUInt(); }

    std::string mManager;
    std::string mSearch;
    std::string mResults;
};

}  // namespace hbbtv::test
