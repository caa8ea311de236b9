// One connection between two processes, shared by all threads and all objects of both. Calls go in both directions over
// it. A reader thread takes in frames and hands them on; it never runs user code and never waits for the peer.
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

#include "frame.h"
#include "node.h"
#include "node_table.h"
#include "outbox.h"

namespace android {
namespace hardware {
namespace host {

// What a session that serves offers by name. Called by reader threads.
class ServiceSource {
  public:
    virtual ~ServiceSource() = default;
    // Null when there is none.
    virtual sp<BHwBinder> FindStub(const std::string& name) = 0;
};

class SocketReader;

class Session : public ParcelSource, public std::enable_shared_from_this<Session> {
  public:
    // Takes over a connected socket. `services` is null on the side that has connected, and outlives the session on the
    // other. Null when there is no thread for it.
    static std::shared_ptr<Session> Start(int fd, ServiceSource* services);

    Session(int fd, ServiceSource* services);
    ~Session() override;

    bool IsDead() const { return mDead; }

    // Calls a node of the peer. While a call waits for its reply, this thread serves the calls that the peer makes on
    // its behalf.
    status_t Transact(uint64_t node, uint32_t code, const Parcel& data, Parcel* reply, bool oneway);

    // The node of a service of the peer, null when there is none or the peer is gone.
    sp<IBinder> Lookup(const std::string& name);

    // Answers a call of the peer. `results` may be null when status is not OK.
    void Reply(uint64_t id, status_t status, const Parcel* results);

    // From the destructor of a proxy node.
    void ProxyIsGone(const BpHwBinder* proxy, uint64_t number, uint64_t timesReceived);

    // A call that had arrived takes no memory any more.
    void CallIsDone(size_t size) { mBytesOfCalls -= size; }

    // What came does not hold what it claims to: closes the session.
    void ParcelIsDamaged() override { Abandon("a parcel does not read as its interface says"); }

  private:
    // A thread that waits for a reply. Lives on that thread's stack, guarded by mMutex.
    struct Waiter {
        explicit Waiter(Parcel* results) : reply(results), changed(ChangedOfThisThread()) {}

        Parcel* const reply;
        bool done = false;
        status_t status = OK;
        std::deque<std::unique_ptr<IncomingCall>> nested;
        // Shared, so that it can be notified when mMutex is released and the waiter may be gone. One per thread: of the
        // waiters of one thread only the innermost waits.
        const std::shared_ptr<std::condition_variable> changed;

        static const std::shared_ptr<std::condition_variable>& ChangedOfThisThread();
    };

    // Sending.
    status_t Call(FrameHead head, const Parcel& data, Parcel* reply);
    status_t Wait(Waiter& waiter);
    status_t SendFrame(FrameHead head, const Parcel* body, Outbox::Patience patience);
    std::vector<WireNode> WireNodesOf(const Parcel& parcel);
    void TakeBack(const std::vector<WireNode>& wire);

    // Receiving: the reader thread. These give null when all is well, else what is wrong with the peer.
    void Read();
    bool ReadFrame(SocketReader& reader);
    const char* Handle(const FrameHead& head, std::unique_ptr<uint64_t[]> body);
    const char* HandleCall(const FrameHead& head, Parcel&& data);
    const char* HandleReply(const FrameHead& head, Parcel&& results);
    const char* HandleRelease(const FrameHead& head);
    const char* HandleLookup(const FrameHead& head, const Parcel& data);
    bool ResolveNodesLocked(const Parcel& parcel, std::vector<sp<IBinder>>* nodes);
    void HandOver(uint64_t parent, std::unique_ptr<IncomingCall> call);
    void Abandon(const char* why);
    void Bury();

    ServiceSource* const mServices;
    const int mFd;  // for the reader; senders use mOutbox
    const std::shared_ptr<Outbox> mOutbox;
    pid_t mPeer = 0;

    std::atomic<bool> mDead{false};
    std::atomic<bool> mAbandoned{false};  // the peer cannot be trusted: nothing more is read
    std::atomic<size_t> mBytesOfCalls{0};

    std::mutex mMutex;
    uint64_t mNextId = 1;
    std::unordered_map<uint64_t, Waiter*> mWaiters;
    NodeTable mNodes;
};

}  // namespace host
}  // namespace hardware
}  // namespace android
