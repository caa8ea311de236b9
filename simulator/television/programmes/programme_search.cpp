#include "television/programmes/programme_search.h"

#include <algorithm>

namespace hbbtv::sim {

namespace {

constexpr unsigned kScheduledContent = 1;
constexpr size_t kMostResults = 65536;  // the limit of the wire

}  // namespace

ProgrammeSearch::ProgrammeSearch(Guide& guide, ResultRoom& room, std::function<Services()> listed, unsigned target)
    : mGuide(guide), mRoom(room), mListed(std::move(listed)), mTarget(target) {}

void ProgrammeSearch::SetQuery(ProgrammeQuery::Shared query) {
    mWanted = Wanted();
    mWanted.query = std::move(query);
    Changed();
}

void ProgrammeSearch::FindFrom(std::shared_ptr<const Service> service, std::time_t start, size_t most) {
    mWanted = Wanted();
    mWanted.from = start;
    mWanted.most = most;
    AddConstraint(std::move(service));
}

void ProgrammeSearch::AddConstraint(std::shared_ptr<const Service> service) {
    mWanted.constrained = true;
    Services& services = mWanted.services;
    const bool known = std::find(services.begin(), services.end(), service) != services.end();
    if (service && !known) services.push_back(std::move(service));
    Changed();
}

void ProgrammeSearch::RemoveConstraints() {
    mWanted.constrained = false;
    mWanted.services.clear();
    Changed();
}

void ProgrammeSearch::Changed() {
    if (mState != SearchState::Idle) End(SearchState::Idle, SearchEvent::IdleAgain);
}

void ProgrammeSearch::Ask(size_t offset, size_t count, std::time_t now) {
    mOffset = offset;
    mCount = count;
    if (mState == SearchState::Idle) Begin(now);
    mState = SearchState::Searching;
}

void ProgrammeSearch::Begin(std::time_t now) {
    mServices.clear();
    const bool scheduled = (mTarget & kScheduledContent) != 0;
    if (scheduled) mServices = mWanted.constrained ? mWanted.services : mListed();
    mService = 0;
    mRange = mGuide.Known(now);
    mRange.from = std::max(mRange.from, mWanted.from);
    mNext = mRange.from;
    mProgress = Progress::Goes;
}

void ProgrammeSearch::Abort() {
    mWanted = Wanted();
    Changed();
}

void ProgrammeSearch::End(SearchState state, SearchEvent event) {
    mState = state;
    if (state == SearchState::Idle) Empty();
    changed.Notify(event);
}

void ProgrammeSearch::Empty() {
    mRoom.GiveBack(mResults.size());
    ProgrammeList().swap(mResults);
    mServices.clear();
}

ProgrammeSearch::Progress ProgrammeSearch::Look(const std::shared_ptr<Programme>& programme) {
    if (mResults.size() >= std::min(mWanted.most, kMostResults)) return Progress::Complete;
    if (mWanted.query && !mWanted.query->Fits(*programme)) return Progress::Goes;
    if (!mRoom.Take()) return Progress::NoRoom;
    mResults.push_back(programme);
    return Progress::Goes;
}

// Services are searched one after the other. The position is stored as a time, because the guide may change between
// steps.
ProgrammeSearch::Progress ProgrammeSearch::Walk(std::chrono::steady_clock::time_point deadline) {
    while (mService < mServices.size()) {
        Progress progress = Progress::Goes;
        bool late = std::chrono::steady_clock::now() >= deadline;
        if (late) return progress;
        mGuide.Walk(mServices[mService], {mNext, mRange.to}, [&](const std::shared_ptr<Programme>& programme) {
            mNext = programme->onAir.to;
            progress = Look(programme);
            late = std::chrono::steady_clock::now() >= deadline;
            return progress == Progress::Goes && !late;
        });
        if (progress != Progress::Goes || late) return progress;
        ++mService;
        mNext = mRange.from;
    }
    return Progress::Complete;
}

// Results are found service by service and returned sorted by time, then by service.
void ProgrammeSearch::Step(std::chrono::steady_clock::time_point deadline) {
    if (mState != SearchState::Searching) return;
    const bool before = mProgress == Progress::Complete;
    if (!before) mProgress = Walk(deadline);
    if (mProgress == Progress::Goes) return;
    if (mProgress == Progress::NoRoom) return GiveUp();
    if (!before) {
        mServices.clear();
        std::stable_sort(mResults.begin(), mResults.end(),
                         [](const auto& a, const auto& b) { return a->onAir.from < b->onAir.from; });
    }
    End(SearchState::Found, SearchEvent::Finished);
}

size_t ProgrammeSearch::Length() const {
    const size_t total = Total();
    return std::min(mCount, total - std::min(mOffset, total));
}

std::shared_ptr<Programme> ProgrammeSearch::Item(size_t index) const {
    return index < Length() ? mResults[mOffset + index] : nullptr;
}

}  // namespace hbbtv::sim
