// The simulator for tests of searches over the wire: a line-up and programmes that are written down, and the requests
// of the search manager in words.
#pragma once

#include "channel_platform.h"

namespace hbbtv::test {

// On the 5th of January 2026, UTC. Channel One:  18:00 Evening News,  18:30 Kitchen Table,  19:15 Old Letters,
// 20:45 Late News.  Two:  18:00 Sports Live,  20:00 The Last Ferry.  Wave:  18:00 Night Music.
extern const char* const kSearchedProgrammes;
constexpr int kSixOClock = 1767636000;  // 18:00 of that day

enum SearchMethod {
    kManagerCreate = 1,
    kManagerDestroy = 3,
    kManagerRegisterCallback = 4,
    kCreateSearch = 5,
    kDestroySearch = 7,
    kCreateQuery = 8,
    kGetResult = 10,
    kGetSearchTarget = 12,
    kSetQuery = 14,
    kFindProgrammesFromStream = 15,
    kAddChannelConstraint = 16,
    kResultsRelease = 17,
    kGetOffset = 18,
    kGetLength = 20,
    kGetTotalSize = 22,
    kGetProgramme = 24,
    kGetResults = 26,
    kAbort = 27,
    kQueryRelease = 28,
    kAnd = 29,
    kOr = 31,
    kNot = 33
};

enum Comparison { kEqual, kNotEqual, kGreater, kGreaterOrEqual, kLess, kLessOrEqual, kContains };

class SearchPlatform : public ChannelPlatform {
  protected:
    void SetUp() override { BeginSearching(kSearchedProgrammes); }

    // Starts the simulator with these programmes, and makes a manager with a registered callback and a search.
    void BeginSearching(const std::string& programmes, const std::vector<std::string>& options = {});

    // The reply to one request of the family.
    Json::Value Asked(int method, const Members& members = {}) { return AskAt(kToSearchManager, method, members); }
    Json::Value AskedOf(const std::string& handle, int method, Members members = {});

    int RetOf(const std::string& handle, int method, const Members& members = {}) {
        return AskedOf(handle, method, members)["ret"].asInt();
    }

    // The handle that a request gives.
    std::string Made(const std::string& handle, int method, const Members& members = {});

    std::string NewManager(bool registered = true);
    std::string NewSearch(const std::string& manager) { return Made(manager, kCreateSearch, {{"target", 1u}}); }
    std::string Query(const std::string& field, int comparison, const std::string& value);
    std::string Combined(int method, const std::string& first, const std::string& second);
    int SetQuery(const std::string& search, const std::string& query);
    int Constrain(const std::string& search, const std::string& channel);
    int FindFrom(const std::string& search, const std::string& channel, const Json::Value& time, int count);
    int GetResults(const std::string& results, unsigned offset = 0, unsigned count = 100);

    // The next event as text, with the searches that were made here by number: "0 of search 1".
    std::string NextState();

    // The titles of the page: "Evening News, Late News".
    std::string Titles(const std::string& results);
    std::string TitleOf(const std::string& programme);

    // The titles that the search finds for this query, and "event N" when it does not finish.
    std::string Found(const std::string& query);

    unsigned Number(const std::string& results, int method, const char* member) {
        return AskedOf(results, method)[member].asUInt();
    }

    std::string mManager;
    std::string mSearch;
    std::string mResults;
    std::unique_ptr<LibraryStandIn> mSearchEvents;
};

}  // namespace hbbtv::test
