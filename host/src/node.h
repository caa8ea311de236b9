// Nodes inside the transport: the one that stands for an object of another process, and the queue of one-way calls that
// every stub of this process has.
#pragma once

#include <hwbinder/IBinder.h>
#include <hwbinder/Parcel.h>

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "thread_pool.h"

namespace android {
namespace hardware {
namespace host {

class Session;

// One per remote object and session, however many proxies there are. Counts how often the object has arrived and gives
// all of that back when the last proxy is gone.
class BpHwBinder : public IBinder {
  public:
    BpHwBinder(const std::shared_ptr<Session>& session, uint64_t number) : mSession(session), mNumber(number) {}

    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                      TransactCallback callback = nullptr) override;

    // DEAD_OBJECT once the death has been reported. A death that nobody watched is reported to the first who links.
    status_t linkToDeath(const sp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0) override;
    status_t unlinkToDeath(const wp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0,
                           wp<DeathRecipient>* outRecipient = nullptr) override;

    BpHwBinder* remoteBinder() override { return this; }

    const Session* session() const { return mSession.get(); }
    uint64_t number() const { return mNumber; }

    // Counts an arrival. The session's lock is held.
    void ReceivedLocked() { ++mTimesReceived; }

    // The session is dead: the recipients are told by a thread of the pool.
    void SessionDied();

    // In a thread of the pool.
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

// A call that has arrived: what is needed to carry it out in whatever thread.
class IncomingCall : public Task {
  public:
    IncomingCall(const std::shared_ptr<Session>& session, const sp<BHwBinder>& target, uint32_t code, bool oneway,
                 uint64_t id, Parcel&& data, size_t size);
    ~IncomingCall() override;

    void Run() override;

    // The call that this thread is serving for the session, or 0: the parent of calls made to it meanwhile.
    static uint64_t ServedFor(const Session* session);

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

// One-way calls of one object, from whichever session: carried out by the pool in order, one at a time.
class OnewayQueue {
  public:
    void Push(const sp<BHwBinder>& owner, std::unique_ptr<IncomingCall> call);

  private:
    class Turn;
    std::unique_ptr<IncomingCall> Next();
    bool FinishTurn();

    std::mutex mMutex;
    std::deque<std::unique_ptr<IncomingCall>> mCalls;
    bool mBusy = false;  // a turn is posted or runs
};

}  // namespace host
}  // namespace hardware
}  // namespace android
