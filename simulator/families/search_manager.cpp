// Search managers, searches, queries and result sets, and the event that reports the state of a search.
#include "family/family_setup.h"

#include <cmath>

#include "core/error.h"
#include "family/members.h"
#include "television/programmes/search_runner.h"

namespace hbbtv::sim {

namespace {

struct Manager {
    bool registered = false;
};

// A search and its only result set, which can outlive it.
struct Search {
    std::shared_ptr<ProgrammeSearch> search;
    std::shared_ptr<Manager> manager;
    bool destroyed = false;
};

class SearchManagerFamily : public Family {
  public:
    explicit SearchManagerFamily(const FamilySetup& setup);

  private:
    // Search managers.
    void Create(In, Out out) { out["out_handle"] = Text(mManagers, std::make_shared<Manager>()); }
    void Destroy(In in, Out);
    void RegisterCallback(In in, Out);

    // Searches.
    void CreateSearch(In in, Out out);
    void DestroySearch(In in, Out);
    void CreateQuery(In in, Out out);
    void GetResult(In in, Out out) { out["out_handle"] = Text(mResults, FindSearch(in, "in_handle")); }
    void GetSearchTarget(In in, Out out) { out["target"] = FindSearch(in, "in_handle")->search->Target(); }
    void SetQuery(In in, Out);
    void FindProgrammesFromStream(In in, Out);
    void AddChannelConstraint(In in, Out);

    // Result sets.
    void ReleaseResults(In in, Out) { Remove(mResults, in, "in_handle", "result set"); }
    void GetOffset(In in, Out out) { out["offset"] = static_cast<unsigned>(Results(in).Offset()); }
    void GetLength(In in, Out out) { out["length"] = static_cast<unsigned>(Results(in).Length()); }
    void GetTotalSize(In in, Out out) { out["size"] = static_cast<unsigned>(Results(in).Total()); }
    void GetProgramme(In in, Out out);
    void GetResults(In in, Out);
    void Abort(In in, Out) { Results(in).Abort(); }

    // Queries.
    void ReleaseQuery(In in, Out) { Remove(mQueries, in, "in_handle", "query"); }
    void QueryAnd(In in, Out out) { Add(And(FindQuery(in, "in_handle1"), FindQuery(in, "in_handle2")), out); }
    void QueryOr(In in, Out out) { Add(Or(FindQuery(in, "in_handle1"), FindQuery(in, "in_handle2")), out); }
    void QueryNot(In in, Out out) { Add(Not(FindQuery(in, "in_handle")), out); }

    std::shared_ptr<Search> FindSearch(In in, const char* member) const {
        return Find(mSearches, in, member, "search");
    }

    ProgrammeQuery::Shared FindQuery(In in, const char* member) const { return Find(mQueries, in, member, "query"); }
    ProgrammeSearch& Results(In in) const { return *Find(mResults, in, "in_handle", "result set")->search; }
    void Add(const ProgrammeQuery::Shared& query, Out out) { out["out_handle"] = Text(mQueries, query); }
    ProgrammeSearch::Services Listed() const;
    void Destroy(const std::shared_ptr<Search>& search, Handle handle);
    void Tell(const Manager& manager, const std::string& search, SearchEvent event);

    Tv& mTv;
    EventSink& mSink;
    ResultRoom mRoom;
    HandleTable<Manager> mManagers;
    HandleTable<Search> mSearches;
    HandleTable<Search> mResults;  // the same searches, under the handles of their result sets
    HandleTable<ProgrammeQuery> mQueries;
    SearchRunner mRunner;
};

SearchManagerFamily::SearchManagerFamily(const FamilySetup& setup)
    : Family("search_manager"),
      mTv(setup.tv),
      mSink(Sends(setup.makeSink, {"state"})),
      mManagers(mTv.handleSource),
      mSearches(mTv.handleSource),
      mResults(mTv.handleSource),
      mQueries(mTv.handleSource),
      mRunner(setup.loop) {
    using F = SearchManagerFamily;
    Row("SearchManager_Create", &F::Create);
    Row("SearchManager_Destroy", static_cast<void (F::*)(In, Out)>(&F::Destroy));
    Row("SearchManager_RegisterCallback", &F::RegisterCallback);
    Row("SearchManager_CreateSearch", &F::CreateSearch);
    Row("SearchManager_DestroySearch", &F::DestroySearch);
    Row("MetaSearch_CreateQuery", &F::CreateQuery);
    Row("MetaSearch_GetResult", &F::GetResult);
    Row("MetaSearch_GetSearchTarget", &F::GetSearchTarget);
    Row("MetaSearch_SetQuery", &F::SetQuery);
    Row("MetaSearch_FindProgrammesFromStream", &F::FindProgrammesFromStream);
    Row("MetaSearch_AddChannelConstraint", &F::AddChannelConstraint);
    Row("SearchResults_Release", &F::ReleaseResults);
    Row("SearchResults_GetOffset", &F::GetOffset);
    Row("SearchResults_GetLength", &F::GetLength);
    Row("SearchResults_GetTotalSize", &F::GetTotalSize);
    Row("SearchResults_GetProgramme", &F::GetProgramme);
    Row("SearchResults_GetResults", &F::GetResults);
    Row("SearchResults_Abort", &F::Abort);
    Row("Query_Release", &F::ReleaseQuery);
    Row("Query_And", &F::QueryAnd);
    Row("Query_Or", &F::QueryOr);
    Row("Query_Not", &F::QueryNot);
}

void SearchManagerFamily::Destroy(In in, Out) {
    const auto manager = Find(mManagers, in, "in_handle", "search manager");
    mManagers.Remove(in.Pointer("in_handle"));
    const auto searches = mSearches.All();
    for (const auto& entry : searches) {
        if (entry.second->manager == manager) Destroy(entry.second, entry.first);
    }
}

// The event has no context, so the caller's is only checked.
void SearchManagerFamily::RegisterCallback(In in, Out) {
    const auto manager = Find(mManagers, in, "in_handle", "search manager");
    in.Pointer("context");
    manager->registered = true;
}

void SearchManagerFamily::Tell(const Manager& manager, const std::string& search, SearchEvent event) {
    if (!manager.registered) return;
    Json::Value message;
    message["state"] = static_cast<int>(event);
    message["searchHandle"] = search;
    mSink.Send("state", message);
}

ProgrammeSearch::Services SearchManagerFamily::Listed() const {
    ProgrammeSearch::Services services;
    for (const auto& channel : mTv.channelList.All()->Channels()) services.push_back(channel->service);
    return services;
}

void SearchManagerFamily::CreateSearch(In in, Out out) {
    const auto manager = Find(mManagers, in, "in_handle", "search manager");
    const unsigned target = in.UInt("target");
    if (target == 0 || target > 3) throw Refused("there is no search target " + std::to_string(target));
    const auto search = std::make_shared<Search>();
    search->manager = manager;
    search->search = std::make_shared<ProgrammeSearch>(
        *mTv.guide, mRoom, [this] { return Listed(); }, target);
    const std::string handle = Text(mSearches, search);
    search->search->changed.Watch([this, found = search.get(), handle](SearchEvent event) {
        if (!found->destroyed) Tell(*found->manager, handle, event);
    });
    out["out_handle"] = handle;
}

void SearchManagerFamily::DestroySearch(In in, Out) {
    Destroy(FindSearch(in, "in_handle"), static_cast<Handle>(in.Pointer("in_handle")));
}

// Ends the search without an event. Its results can be read until the result set is released.
void SearchManagerFamily::Destroy(const std::shared_ptr<Search>& search, Handle handle) {
    search->destroyed = true;
    if (search->search->State() == SearchState::Searching) search->search->Abort();
    mSearches.Remove(handle);
}

void SearchManagerFamily::CreateQuery(In in, Out out) {
    FindSearch(in, "in_handle");
    Add(Compare(in.Text("field"), in.Int("comp"), in.Text("value")), out);
}

void SearchManagerFamily::SetQuery(In in, Out) {
    const auto search = FindSearch(in, "search_handle");
    search->search->SetQuery(FindQuery(in, "query_handle"));
}

void SearchManagerFamily::FindProgrammesFromStream(In in, Out) {
    const auto search = FindSearch(in, "search_handle");
    const auto channel = Find(mTv.channels, in, "channel_handle", "channel");
    const double time = in.Real("time");
    const int count = in.Int("count");
    if (!(time >= 0 && time <= UINT32_MAX) || time != std::floor(time)) {
        throw Refused("\"time\" is not a 32-bit whole number");
    }
    if (count < 0) throw Refused("\"count\" is negative");
    search->search->FindFrom(channel->service, static_cast<std::time_t>(time), static_cast<size_t>(count));
}

// OIPF DAE volume 5: the null channel removes the constraints.
void SearchManagerFamily::AddChannelConstraint(In in, Out) {
    const auto search = FindSearch(in, "search_handle");
    if (in.Pointer("channel_handle") == 0) return search->search->RemoveConstraints();
    search->search->AddConstraint(Find(mTv.channels, in, "channel_handle", "channel")->service);
}

void SearchManagerFamily::GetProgramme(In in, Out out) {
    const unsigned index = in.UInt("index");
    const ProgrammeSearch& results = Results(in);
    const auto programme = results.Item(index);
    if (!programme) throw Refused("index " + std::to_string(index) + " of " + std::to_string(results.Length()));
    out["out_handle"] = Text(mTv.programmes, programme);
}

void SearchManagerFamily::GetResults(In in, Out) {
    const auto search = Find(mResults, in, "in_handle", "result set");
    const unsigned offset = in.UInt("offset");
    const unsigned count = in.UInt("count");
    if (search->destroyed) throw Refused("the search of this result set was destroyed");
    search->search->Ask(offset, count, std::time(nullptr));
    mRunner.Run(search->search);
}

}  // namespace

std::unique_ptr<Family> MakeSearchManagerFamily(const FamilySetup& setup) {
    return std::make_unique<SearchManagerFamily>(setup);
}

}  // namespace hbbtv::sim
