// One connection between two processes, shared by all threads and objects of both. It carries calls in both directions.
// One thread at a time reads frames and dispatches them: a caller that waits for its reply, or else a thread of the
// Poller, which does not wait for the peer.
#pragma once

#include <hwbinder/IBinder.h>
#include <hwbinder/Parcel.h>
#include <sys/types.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "connection/frame.h"
#include "connection/node.h"
#include "connection/node_table.h"
#include "connection/outbox.h"
#include "connection/poller.h"
#include "connection/socket_reader.h"

namespace android::hardware::host {

// The services of a serving session. Called by threads that read.
class ServiceSource {
  public:
    virtual ~ServiceSource() = default;
    // Returns a service by name, or null.
    virtual sp<BHwBinder> FindStub(const std::string& name) = 0;
};

class Session : public ParcelSource, public Pollable, public std::enable_shared_from_this<Session> {
  public:
    // Takes ownership of a connected socket. `services` is null on the connecting side; on the other, it must outlive
    // the session. Returns null if there is no thread to read it.
    static std::shared_ptr<Session> Start(int fd, ServiceSource* services);

    Session(int fd, ServiceSource* services);
    ~Session() override;

    bool IsDead() const { return mDead; }

    // Returns the id of the process that has connected or accepted, or 0 if it is not visible here.
    pid_t PeerPid() const { return mPeer; }

    // Calls a node of the peer. While it waits for the reply, this thread serves the calls that the peer makes on its
    // behalf.
    status_t Transact(uint64_t node, uint32_t code, const Parcel& data, Parcel* reply, bool oneway);

    // Returns the node of a service of the peer, or null if there is none or the peer is gone.
    sp<IBinder> Lookup(const std::string& name);

    // Replies to a call of the peer. `results` may be null if `status` is not OK.
    void Reply(uint64_t id, status_t status, const Parcel* results);

    // Called by the destructor of a proxy node.
    void ProxyIsGone(const BpHwBinder* proxy, uint64_t number, uint64_t timesReceived);

    // Called when a call that has arrived is finished and its memory is freed.
    void CallIsDone(size_t size) { mBytesOfCalls -= size; }

    std::unique_ptr<Task> Readable() override;

    // Closes the session.
    void ParcelIsDamaged() override { Abandon("a parcel does not match its interface"); }

  private:
    // A thread that waits for a reply. On that thread's stack, guarded by mMutex.
    struct Waiter {
        explicit Waiter(Parcel* results) : reply(results), changed(ChangedOfThisThread()) {}

        Parcel* const reply;
        bool done = false;
        status_t status = OK;
        std::deque<std::unique_ptr<IncomingCall>> nested;
        // Shared, so that it can be notified without mMutex, when the waiter may be gone. One per thread: only the
        // innermost waiter of a thread waits.
        const std::shared_ptr<std::condition_variable> changed;

        static const std::shared_ptr<std::condition_variable>& ChangedOfThisThread();
    };

    // Sending.
    status_t Call(FrameHead head, const Parcel& data, Parcel* reply);
    status_t Wait(Waiter& waiter);
    status_t SendFrame(FrameHead head, const Parcel* body, Outbox::Patience patience);
    std::vector<WireNode> WireNodesOf(const Parcel& parcel);
    void TakeBack(const std::vector<WireNode>& wire);

    // Receiving, on the thread that reads. Strings are null on success, or describe the peer's error.
    bool BeginReading();
    void EndReading();
    void ReadFor(Waiter& waiter);
    bool ReadFrame(bool waits);
    const char* Handle(const FrameHead& head, std::unique_ptr<uint64_t[]> body, Descriptors&& descriptors);
    const char* HandleCall(const FrameHead& head, Parcel&& data);
    const char* HandleReply(const FrameHead& head, Parcel&& results);
    const char* HandleRelease(const FrameHead& head);
    const char* HandleLookup(const FrameHead& head, const Parcel& data);
    bool ResolveNodesLocked(const Parcel& parcel, std::vector<sp<IBinder>>* nodes);
    void HandOver(uint64_t parent, std::unique_ptr<IncomingCall> call);
    void Abandon(const char* why);
    void Bury();

    ServiceSource* const mServices;
    const int mFd;         // for reading; senders use mOutbox
    uint64_t mNumber = 0;  // of the Poller
    const std::shared_ptr<Outbox> mOutbox;
    pid_t mPeer = 0;

    std::atomic<bool> mDead{false};
    std::atomic<bool> mAbandoned{false};  // the peer is not trusted, and nothing more is read
    std::atomic<size_t> mBytesOfCalls{0};

    // Of the thread that reads.
    SocketReader mReader;
    bool mKeepsCall = false;                  // it may serve a call itself
    std::unique_ptr<IncomingCall> mKeptCall;  // which it does

    std::mutex mMutex;
    bool mIsRead = false;  // by some thread; otherwise, the Poller is armed unless the session is dead
    uint64_t mNextId = 1;
    std::unordered_map<uint64_t, Waiter*> mWaiters;
    NodeTable mNodes;
};

}  // namespace android::hardware::host
