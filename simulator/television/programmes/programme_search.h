// One search among the programmes of the guide: query and constraints, progress, and the page of results requested
// last. It runs in steps, so that requests are served between them.
#pragma once

#include <chrono>
#include <functional>
#include <vector>

#include "core/changes.h"
#include "television/programmes/guide.h"
#include "television/programmes/programme_query.h"

namespace hbbtv::sim {

// The number of results that all searches have together.
class ResultRoom {
  public:
    bool Take() { return mTaken < kMost && ++mTaken > 0; }
    void GiveBack(size_t results) { mTaken -= results; }

  private:
    static constexpr size_t kMost = 1000000;

    size_t mTaken = 0;
};

enum class SearchState { Idle, Searching, Found };

// Values of OIPF DAE volume 5; 1 and 2 have no meaning there.
enum class SearchEvent { Finished = 0, IdleAgain = 3, NoResources = 4 };

class ProgrammeSearch {
  public:
    using Services = std::vector<std::shared_ptr<const Service>>;

    // `listed` returns the services of the channel list. A target other than scheduled content has no programmes.
    ProgrammeSearch(Guide& guide, ResultRoom& room, std::function<Services()> listed, unsigned target);
    ~ProgrammeSearch() { Empty(); }
    ProgrammeSearch(const ProgrammeSearch&) = delete;
    ProgrammeSearch& operator=(const ProgrammeSearch&) = delete;

    unsigned Target() const { return mTarget; }
    SearchState State() const { return mState; }

    // Query and constraints. Each of these makes a search that is running or has found something idle, and notifies. A
    // query and FindFrom replace everything set before.
    void SetQuery(ProgrammeQuery::Shared query);
    void FindFrom(std::shared_ptr<const Service> service, std::time_t start, size_t most);
    void AddConstraint(std::shared_ptr<const Service> service);  // null: a channel that is not on air has no programmes
    void RemoveConstraints();

    // Requests a page. Results are kept until the query or the constraints change.
    void Ask(size_t offset, size_t count, std::time_t now);

    // Ends the search and discards query, constraints and results.
    void Abort();

    // Ends the search for lack of resources.
    void GiveUp() { End(SearchState::Idle, SearchEvent::NoResources); }

    // Continues until the deadline, and notifies at the end.
    void Step(std::chrono::steady_clock::time_point deadline);

    // The page: empty unless the search is in the state Found. The offset is the requested one.
    size_t Offset() const { return mState == SearchState::Found ? mOffset : 0; }
    size_t Total() const { return mState == SearchState::Found ? mResults.size() : 0; }
    size_t Length() const;
    std::shared_ptr<Programme> Item(size_t index) const;  // null outside the page

    Changes<SearchEvent> changed;  // its state

  private:
    struct Wanted {
        ProgrammeQuery::Shared query;  // null: every programme
        bool constrained = false;      // to `services`; otherwise those of the channel list
        Services services;
        std::time_t from = 0;
        size_t most = SIZE_MAX;
    };

    enum class Progress { Goes, Complete, NoRoom };

    void Changed();
    void Begin(std::time_t now);
    void End(SearchState state, SearchEvent event);
    Progress Look(const std::shared_ptr<Programme>& programme);
    Progress Walk(std::chrono::steady_clock::time_point deadline);
    void Empty();

    Guide& mGuide;
    ResultRoom& mRoom;
    std::function<Services()> mListed;
    unsigned mTarget;
    Wanted mWanted;
    SearchState mState = SearchState::Idle;
    size_t mOffset = 0;
    size_t mCount = 0;

    // Progress.
    Services mServices;
    size_t mService = 0;    // the current one
    std::time_t mNext = 0;  // the position in that service
    TimeRange mRange;
    Progress mProgress = Progress::Goes;
    ProgrammeList mResults;
};

}  // namespace hbbtv::sim
