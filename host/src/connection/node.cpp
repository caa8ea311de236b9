#include "connection/node.h"

#include <hwbinder/IPCThreadState.h>
#include <unistd.h>

#include <algorithm>

#include "connection/session.h"
#include "log/host_log.h"

namespace android::hardware {

BHwBinder::BHwBinder() : mOnewayQueue(std::make_unique<host::OnewayQueue>()) {}
BHwBinder::~BHwBinder() = default;

status_t BHwBinder::transact(uint32_t code, const Parcel&, Parcel*, uint32_t, TransactCallback) {
    ALOGE("method %u called through the node of an object of this process", code);
    return INVALID_OPERATION;
}

status_t BHwBinder::linkToDeath(const sp<DeathRecipient>&, void*, uint32_t) {
    return INVALID_OPERATION;
}
status_t BHwBinder::unlinkToDeath(const wp<DeathRecipient>&, void*, uint32_t, wp<DeathRecipient>*) {
    return INVALID_OPERATION;
}

namespace host {

// ---- BpHwBinder ----

BpHwBinder::~BpHwBinder() {
    mSession->ProxyIsGone(this, mNumber, mTimesReceived);
}

status_t BpHwBinder::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags, TransactCallback) {
    return mSession->Transact(mNumber, code, data, reply, (flags & FLAG_ONEWAY) != 0);
}

status_t BpHwBinder::linkToDeath(const sp<DeathRecipient>& recipient, void*, uint32_t) {
    // Removes recipients that were destroyed without unlinking. The others are held until the lock is released: one of
    // these references may become the last one.
    std::vector<sp<DeathRecipient>> held;
    std::lock_guard<std::mutex> lock(mMutex);
    if (mDeathReported) return DEAD_OBJECT;
    const auto gone = [&](const wp<DeathRecipient>& known) {
        held.push_back(known.promote());
        return held.back() == nullptr;
    };
    mRecipients.erase(std::remove_if(mRecipients.begin(), mRecipients.end(), gone), mRecipients.end());
    mRecipients.push_back(recipient);
    // The session may die concurrently and post a second obituary: only one of them reports.
    if (mSession->IsDead()) PostObituary();
    return OK;
}

status_t BpHwBinder::unlinkToDeath(const wp<DeathRecipient>& recipient, void*, uint32_t,
                                   wp<DeathRecipient>* outRecipient) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mDeathReported) return DEAD_OBJECT;
    const auto found = std::find(mRecipients.begin(), mRecipients.end(), recipient);
    if (found == mRecipients.end()) return NAME_NOT_FOUND;
    if (outRecipient != nullptr) *outRecipient = *found;
    mRecipients.erase(found);
    return OK;
}

void BpHwBinder::SessionDied() {
    std::lock_guard<std::mutex> lock(mMutex);
    if (!mRecipients.empty()) PostObituary();
}

namespace {

class Obituary : public Task {
  public:
    explicit Obituary(const sp<BpHwBinder>& node) : mNode(node) {}
    void Run() override { mNode->ReportDeath(); }

  private:
    const sp<BpHwBinder> mNode;
};

}  // namespace

void BpHwBinder::PostObituary() {
    ThreadPool::Get().Post(std::make_unique<Obituary>(this));
}

void BpHwBinder::ReportDeath() {
    std::vector<wp<DeathRecipient>> recipients;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mDeathReported || mRecipients.empty()) return;
        mDeathReported = true;
        recipients.swap(mRecipients);
    }
    for (const wp<DeathRecipient>& weak : recipients) {
        const sp<DeathRecipient> recipient = weak.promote();
        if (recipient != nullptr) recipient->binderDied(wp<IBinder>(this));
    }
}

// ---- IncomingCall ----

namespace {

// The call that this thread is serving: the parent of the calls that it makes.
struct Serving {
    const Session* session;
    uint64_t id;
    unsigned depth;
    pid_t caller;  // 0 for a one-way call
};
thread_local Serving tServing = {nullptr, 0, 0, 0};

// The limit of nested calls on one thread. Deeper nesting by a peer would exhaust the thread's stack.
constexpr unsigned kMaxDepth = 100;

}  // namespace

IncomingCall::IncomingCall(const std::shared_ptr<Session>& session, const sp<BHwBinder>& target, uint32_t code,
                           bool oneway, uint64_t id, Parcel&& data, size_t size)
    : mSession(session), mTarget(target), mCode(code), mOneway(oneway), mId(id), mData(std::move(data)), mSize(size) {}

IncomingCall::~IncomingCall() {
    mSession->CallIsDone(mSize);
}

uint64_t IncomingCall::ServedFor(const Session* session) {
    return tServing.session == session ? tServing.id : 0;
}

void IncomingCall::Run() {
    const Serving before = tServing;
    // Nothing waits for a one-way call, so calls made by it do not have a parent.
    tServing = mOneway ? Serving{nullptr, 0, before.depth + 1, 0}
                       : Serving{mSession.get(), mId, before.depth + 1, mSession->PeerPid()};
    if (before.depth >= kMaxDepth) {
        ALOGE("refusing a call: calls are nested too deeply");
        mSession->Reply(mId, FAILED_TRANSACTION, nullptr);
    } else {
        Serve();
    }
    tServing = before;
}

status_t IncomingCall::Serve() {
    Parcel reply;
    if (mOneway) return mTarget->onTransact(mCode, mData, &reply, IBinder::FLAG_ONEWAY, [](Parcel&) {});
    bool answered = false;
    const auto answer = [&](Parcel& results) {
        answered = true;
        mSession->Reply(mId, OK, &results);
    };
    const status_t status = mTarget->onTransact(mCode, mData, &reply, 0, answer);
    if (!answered) mSession->Reply(mId, status, &reply);
    return status;
}

pid_t IncomingCall::Caller() {
    return tServing.depth > 0 ? tServing.caller : getpid();
}

// ---- OnewayQueue ----

// Runs one call, then posts the next turn to the pool: many objects share few threads.
class OnewayQueue::Turn : public Task {
  public:
    explicit Turn(const sp<BHwBinder>& owner) : mOwner(owner) {}

    void Run() override {
        OnewayQueue& queue = mOwner->onewayQueue();
        queue.Next()->Run();
        if (!queue.FinishTurn()) ThreadPool::Get().Post(std::make_unique<Turn>(mOwner));
    }

  private:
    const sp<BHwBinder> mOwner;
};

void OnewayQueue::Push(const sp<BHwBinder>& owner, std::unique_ptr<IncomingCall> call) {
    std::lock_guard<std::mutex> lock(mMutex);
    mCalls.push_back(std::move(call));
    if (mBusy) return;
    mBusy = true;
    ThreadPool::Get().Post(std::make_unique<Turn>(owner));
}

std::unique_ptr<IncomingCall> OnewayQueue::Next() {
    std::lock_guard<std::mutex> lock(mMutex);
    std::unique_ptr<IncomingCall> call = std::move(mCalls.front());
    mCalls.pop_front();
    return call;
}

// Returns whether no call is waiting.
bool OnewayQueue::FinishTurn() {
    std::lock_guard<std::mutex> lock(mMutex);
    mBusy = !mCalls.empty();
    return !mBusy;
}

}  // namespace host

IPCThreadState* IPCThreadState::self() {
    static IPCThreadState* const state = new IPCThreadState;
    return state;
}

pid_t IPCThreadState::getCallingPid() const {
    return host::IncomingCall::Caller();
}

}  // namespace android::hardware
