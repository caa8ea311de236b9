// Nodes within the transport: the node of a remote object, calls that have arrived, and the queue of one-way calls of
// each stub of this process.
#pragma once

#include <hwbinder/IBinder.h>
#include <hwbinder/Parcel.h>
#include <sys/types.h>

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "connection/thread_pool.h"

namespace android::hardware::host {

class Session;

// The node of a remote object: one per object and session, for any number of proxies. Counts how often the object was
// received, and releases it as often when the last proxy is destroyed.
class BpHwBinder : public IBinder {
  public:
    BpHwBinder(const std::shared_ptr<Session>& session, uint64_t number) : mSession(session), mNumber(number) {}

    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                      TransactCallback callback = nullptr) override;

    // Return DEAD_OBJECT once the death has been reported. The first recipient that is linked after an unreported death
    // receives it.
    status_t linkToDeath(const sp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0) override;
    status_t unlinkToDeath(const wp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0,
                           wp<DeathRecipient>* outRecipient = nullptr) override;

    BpHwBinder* remoteBinder() override { return this; }

    const Session* session() const { return mSession.get(); }
    uint64_t number() const { return mNumber; }

    // Counts that the object was received. The session's lock is held.
    void ReceivedLocked() { ++mTimesReceived; }

    // Notifies the recipients of the session's death on a thread of the pool.
    void SessionDied();

    // Called on a thread of the pool.
    void ReportDeath();

  protected:
    ~BpHwBinder() override;

  private:
    void PostObituary();

    const std::shared_ptr<Session> mSession;
    const uint64_t mNumber;
    uint64_t mTimesReceived = 0;  // guarded by the session's lock

    std::mutex mMutex;
    std::vector<wp<DeathRecipient>> mRecipients;
    bool mDeathReported = false;
};

// A call that has arrived. Can run on any thread.
class IncomingCall : public Task {
  public:
    IncomingCall(const std::shared_ptr<Session>& session, const sp<BHwBinder>& target, uint32_t code, bool oneway,
                 uint64_t id, Parcel&& data, size_t size);
    ~IncomingCall() override;

    void Run() override;

    // Returns the id of the call that this thread is serving for the session, or 0. It is the parent of calls to the
    // session.
    static uint64_t ServedFor(const Session* session);

    // See IPCThreadState::getCallingPid().
    static pid_t Caller();

  private:
    status_t Serve();

    const std::shared_ptr<Session> mSession;
    const sp<BHwBinder> mTarget;
    const uint32_t mCode;
    const bool mOneway;
    const uint64_t mId;
    Parcel mData;
    const size_t mSize;
};

// The one-way calls of one object, from all sessions. The pool runs them in order, one at a time.
class OnewayQueue {
  public:
    void Push(const sp<BHwBinder>& owner, std::unique_ptr<IncomingCall> call);

  private:
    class Turn;
    std::unique_ptr<IncomingCall> Next();
    bool FinishTurn();

    std::mutex mMutex;
    std::deque<std::unique_ptr<IncomingCall>> mCalls;
    bool mBusy = false;  // a turn is posted or running
};

}  // namespace android::hardware::host
