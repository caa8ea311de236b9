#include "ipc/status/tolm_endpoint_status.h"

#include <time.h>

#include <algorithm>
#include <utility>

namespace tolm {

namespace {

thread_local EndpointStatus::Event::Reference tEvent;
thread_local bool tHandles = false;  // tEvent is of this thread
thread_local uint64_t tSent = 0;     // clients that have received it, if so; counted when it ends

// A few milliseconds late, but much cheaper, and there are many events.
EndpointStatus::Clock::time_point CoarseNow() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return EndpointStatus::Clock::time_point(std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec));
}

void RemoveOne(std::vector<pid_t>& processes, pid_t process) {
    const auto found = std::find(processes.begin(), processes.end(), process);
    if (found != processes.end()) processes.erase(found);
}

}  // namespace

EndpointStatus& EndpointStatus::Of(TolmIpcKeyId key) {
    constexpr size_t kKeys = TOLM_IPC_KEY_SERVICE_GAM_TO_BROWSER + 1;
    static EndpointStatus* const all = new EndpointStatus[kKeys + 1];  // threads run on while the process exits
    return all[key >= 0 && static_cast<size_t>(key) < kKeys ? static_cast<size_t>(key) : kKeys];
}

EndpointStatus::State EndpointStatus::Get() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mState;
}

bool EndpointStatus::IsOpen() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mState.open.has_value() || mState.sending.has_value();
}

void EndpointStatus::Connected(pid_t peer) {
    std::lock_guard<std::mutex> lock(mMutex);
    mState.peer = peer;
    ++mState.connections;
    ++mState.connected;
}

void EndpointStatus::Disconnected() {
    std::lock_guard<std::mutex> lock(mMutex);
    mState.peer = 0;
    if (mState.connections > 0) --mState.connections;
}

void EndpointStatus::SetError(const std::string& text) {
    std::lock_guard<std::mutex> lock(mMutex);
    SetErrorLocked(text);
}

void EndpointStatus::SetErrorLocked(const std::string& text) {
    mState.error = Error{text, std::chrono::system_clock::now()};
}

void EndpointStatus::EventWaits() {
    std::lock_guard<std::mutex> lock(mMutex);
    ++mState.events;
}

void EndpointStatus::EventWaitsNoMore() {
    std::lock_guard<std::mutex> lock(mMutex);
    --mState.events;
}

void EndpointStatus::Refused(const std::string& why) {
    std::lock_guard<std::mutex> lock(mMutex);
    ++mState.refused;
    SetErrorLocked(why);
}

void EndpointStatus::AddClient(pid_t process) {
    std::lock_guard<std::mutex> lock(mMutex);
    mState.clients.push_back(process);
}

void EndpointStatus::RemoveClient(pid_t process) {
    std::lock_guard<std::mutex> lock(mMutex);
    RemoveOne(mState.clients, process);
}

std::optional<EndpointStatus::State> EndpointStatus::TakeOverdue(std::optional<Open> State::*member,
                                                                 Clock::time_point before) {
    std::lock_guard<std::mutex> lock(mMutex);
    std::optional<Open>& open = mState.*member;
    if (!open || open->reported || open->since > before) return std::nullopt;
    open->reported = true;
    return mState;
}

void EndpointStatus::Request::Waits() {
    std::lock_guard<std::mutex> lock(mStatus.mMutex);
    mWaiting.push_back(mCaller);
    mWaits = true;
}

void EndpointStatus::Request::Begin(Clock::time_point now) {
    std::lock_guard<std::mutex> lock(mStatus.mMutex);
    if (std::exchange(mWaits, false)) RemoveOne(mWaiting, mCaller);
    mNumber = ++mStatus.mNumber;
    mOpen = Open{mNumber, mOperation, mCaller, now};
}

// The turn of the next one may have begun already.
EndpointStatus::Request::~Request() {
    std::lock_guard<std::mutex> lock(mStatus.mMutex);
    if (mNumber != 0 && mOpen && mOpen->number == mNumber) mOpen.reset();
    if (mWaits) RemoveOne(mWaiting, mCaller);
    State& state = mStatus.mState;
    ++(!mSucceeded ? state.failed : mForm == Form::kOneWay ? state.oneWay : state.answered);
}

EndpointStatus::Event::Event(EndpointStatus& status) : mStatus(status) {
    Open open;
    open.since = CoarseNow();
    std::lock_guard<std::mutex> lock(mStatus.mMutex);
    ++mStatus.mState.received;
    mSentBefore = mStatus.mState.sent;
    open.number = ++mStatus.mNumber;
    mStatus.mState.open = open;
    tEvent = {&mStatus, open.number};
    tHandles = true;
}

EndpointStatus::Event::~Event() {
    tEvent = {};
    tHandles = false;
    std::lock_guard<std::mutex> lock(mStatus.mMutex);
    mStatus.mState.open.reset();
    mStatus.mState.sent += std::exchange(tSent, 0);
    if (mStatus.mState.sent == mSentBefore) ++mStatus.mState.dropped;
}

EndpointStatus::Event::Reference EndpointStatus::Event::OfThisThread() {
    return tEvent;
}

void EndpointStatus::Event::WorkFor(const Reference& event) {
    tEvent = event;
}

// An event that has ended without its client counts as dropped already.
void EndpointStatus::Event::Received() {
    if (tEvent.status == nullptr) return;
    if (tHandles) {
        ++tSent;
        return;
    }
    EndpointStatus& status = *tEvent.status;
    std::lock_guard<std::mutex> lock(status.mMutex);
    if (status.mState.open && status.mState.open->number == tEvent.number) ++status.mState.sent;
}

void EndpointStatus::Event::NotReceived(const std::string& why) {
    if (tEvent.status != nullptr) tEvent.status->SetError(why);
}

}  // namespace tolm
