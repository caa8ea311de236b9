// One search among the programmes of the guide: what is looked for, how far it has come, and the page of results that
// was asked for last. It goes on in steps, so that everything else goes on between them.
#pragma once

#include <chrono>
#include <functional>
#include <vector>

#include "core/changes.h"
#include "television/programmes/guide.h"
#include "television/programmes/programme_query.h"

namespace hbbtv::sim {

// How many results all searches hold together.
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

    // `listed` gives the services of the channel list. A target that is not scheduled content has no programmes.
    ProgrammeSearch(Guide& guide, ResultRoom& room, std::function<Services()> listed, unsigned target);
    ~ProgrammeSearch() { Empty(); }
    ProgrammeSearch(const ProgrammeSearch&) = delete;
    ProgrammeSearch& operator=(const ProgrammeSearch&) = delete;

    unsigned Target() const { return mTarget; }
    SearchState State() const { return mState; }

    // What is looked for. Each of them makes a search that is under way or has found something idle again, and tells.
    // A query and FindFrom take the place of all that was set before.
    void SetQuery(ProgrammeQuery::Shared query);
    void FindFrom(std::shared_ptr<const Service> service, std::time_t start, size_t most);
    void AddConstraint(std::shared_ptr<const Service> service);  // null: what is not on air has no programmes
    void RemoveConstraints();

    // Asks for a page. What was found before stays found as long as nobody changes what is looked for.
    void Ask(size_t offset, size_t count, std::time_t now);

    // Ends it, and what was looked for and found is forgotten.
    void Abort();

    // Ends it for want of time or memory.
    void GiveUp() { End(SearchState::Idle, SearchEvent::NoResources); }

    // Goes on until the deadline, and tells when it comes to an end.
    void Step(std::chrono::steady_clock::time_point deadline);

    // The page: empty unless the search is in the state Found. The offset is where it was asked for.
    size_t Offset() const { return mState == SearchState::Found ? mOffset : 0; }
    size_t Total() const { return mState == SearchState::Found ? mResults.size() : 0; }
    size_t Length() const;
    std::shared_ptr<Programme> Item(size_t index) const;  // null outside the page

    Changes<SearchEvent> changed;  // its state

  private:
    struct Wanted {
        ProgrammeQuery::Shared query;  // null: every programme
        bool constrained = false;      // to the services; otherwise those of the channel list
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

    // How far it has come.
    Services mServices;
    size_t mService = 0;    // the one that it is at
    std::time_t mNext = 0;  // from where on in that service
    TimeRange mRange;
    Progress mProgress = Progress::Goes;
    ProgrammeList mResults;
};

}  // namespace hbbtv::sim
