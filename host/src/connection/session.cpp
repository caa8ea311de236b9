#include "connection/session.h"

#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include "log/host_log.h"

namespace android::hardware::host {

namespace {

// The limit for the arguments of unfinished calls. A peer above it sends calls faster than they are served.
constexpr size_t kMostBytesOfCalls = 64 * 1024 * 1024;

// The memory of a call in addition to its arguments.
constexpr size_t kOverheadOfCall = 256;

}  // namespace

// ---- Life ----

Session::Session(int fd, ServiceSource* services)
    : mServices(services), mFd(fd), mOutbox(std::make_shared<Outbox>(fd)), mReader(fd) {
    ucred peer = {};
    socklen_t size = sizeof(peer);
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0) mPeer = peer.pid;
}

Session::~Session() = default;

std::shared_ptr<Session> Session::Start(int fd, ServiceSource* services) {
    const auto session = std::make_shared<Session>(fd, services);
    // Data that arrives is not read before the number is known.
    std::lock_guard<std::mutex> lock(session->mMutex);
    session->mNumber = Poller::Get().Add(fd, session);
    return session->mNumber != 0 ? session : nullptr;
}

// Makes the thread that reads see the end of the stream, or the flag, and bury the session.
void Session::Abandon(const char* why) {
    if (mAbandoned.exchange(true)) return;
    ALOGE("closing the connection with process %d: %s", mPeer, why);
    mOutbox->Shutdown();
}

// Called by the thread that reads, once it has dispatched everything.
void Session::Bury() {
    std::vector<sp<BHwBinder>> exports;
    std::vector<wp<BpHwBinder>> imports;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mDead = true;
        for (const auto& entry : mWaiters) {
            entry.second->done = true;
            entry.second->status = DEAD_OBJECT;
            entry.second->changed->notify_one();
        }
        mWaiters.clear();
        exports = mNodes.TakeExports();
        imports = mNodes.Imports();
    }
    Poller::Get().Remove(mFd, mNumber);
    mOutbox->Close();
    if (!exports.empty()) ThreadPool::Get().ReleaseLater(std::move(exports));
    for (const wp<BpHwBinder>& weak : imports) {
        const sp<BpHwBinder> proxy = weak.promote();
        if (proxy != nullptr) proxy->SessionDied();
    }
}

// ---- Sending ----

const std::shared_ptr<std::condition_variable>& Session::Waiter::ChangedOfThisThread() {
    thread_local const std::shared_ptr<std::condition_variable> changed = std::make_shared<std::condition_variable>();
    return changed;
}

status_t Session::Transact(uint64_t node, uint32_t code, const Parcel& data, Parcel* reply, bool oneway) {
    FrameHead head = {};
    head.node = node;
    head.code = code;
    head.type = static_cast<uint32_t>(oneway ? FrameType::kOneway : FrameType::kCall);
    if (oneway) return SendFrame(head, &data, Outbox::Patience::kSome);
    head.parent = IncomingCall::ServedFor(this);
    return Call(head, data, reply);
}

sp<IBinder> Session::Lookup(const std::string& name) {
    FrameHead head = {};
    head.type = static_cast<uint32_t>(FrameType::kLookup);
    Parcel data;
    data.writeText(name.data(), name.size());
    Parcel reply;
    sp<IBinder> node;
    if (Call(head, data, &reply) != OK || reply.readNullableStrongBinder(&node) != OK) return nullptr;
    return node;
}

status_t Session::Call(FrameHead head, const Parcel& data, Parcel* reply) {
    Waiter waiter(reply);
    bool reads;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mDead) return DEAD_OBJECT;
        head.id = mNextId++;
        mWaiters.emplace(head.id, &waiter);
        reads = !mIsRead;
        mIsRead = true;
    }
    // Before the reply can arrive, which would wake a thread of the Poller.
    if (reads) Poller::Get().Disarm(mFd, mNumber);
    const status_t status = SendFrame(head, &data, Outbox::Patience::kSome);
    if (status == OK && reads) ReadFor(waiter);
    if (reads) EndReading();
    if (status == OK) return Wait(waiter);
    std::lock_guard<std::mutex> lock(mMutex);
    mWaiters.erase(head.id);
    // The peer does not know this call, but it may have guessed its number.
    for (std::unique_ptr<IncomingCall>& call : waiter.nested) ThreadPool::Get().Post(std::move(call));
    return status;
}

// Returns when the reply has arrived and every call on behalf of this one has been served.
status_t Session::Wait(Waiter& waiter) {
    std::unique_lock<std::mutex> lock(mMutex);
    for (;;) {
        waiter.changed->wait(lock, [&] { return waiter.done || !waiter.nested.empty(); });
        if (waiter.nested.empty()) return waiter.status;
        std::unique_ptr<IncomingCall> call = std::move(waiter.nested.front());
        waiter.nested.pop_front();
        lock.unlock();
        call->Run();
        call.reset();
        if (BeginReading()) {
            Poller::Get().Disarm(mFd, mNumber);
            ReadFor(waiter);
            EndReading();
        }
        lock.lock();
    }
}

void Session::Reply(uint64_t id, status_t status, const Parcel* results) {
    FrameHead head = {};
    head.type = static_cast<uint32_t>(FrameType::kReply);
    head.id = id;
    head.status = status;
    if (status == OK) {
        const status_t sent = SendFrame(head, results, Outbox::Patience::kSome);
        if (sent == OK || sent == DEAD_OBJECT) return;
        head.status = sent;  // tells the caller why there is no result
    }
    SendFrame(head, nullptr, Outbox::Patience::kNone);
}

void Session::ProxyIsGone(const BpHwBinder* proxy, uint64_t number, uint64_t timesReceived) {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mNodes.Forget(proxy, number);
    }
    FrameHead head = {};
    head.type = static_cast<uint32_t>(FrameType::kRelease);
    head.node = number;
    head.id = timesReceived;
    SendFrame(head, nullptr, Outbox::Patience::kNone);
}

// On any thread.
status_t Session::SendFrame(FrameHead head, const Parcel* body, Outbox::Patience patience) {
    head.magic = FrameHead::kMagic;
    std::vector<WireNode> nodes;
    if (body != nullptr) {
        if (body->writeError() != OK) return body->writeError();
        if (body->wireSize() > Parcel::kMaxSize) return FAILED_TRANSACTION;
        head.bodySize = static_cast<uint32_t>(body->wireSize());
        head.descriptors = static_cast<uint32_t>(body->descriptors().Size());
        for (const sp<IBinder>& node : body->nodes()) {
            BpHwBinder* const proxy = node == nullptr ? nullptr : node->remoteBinder();
            if (proxy == nullptr || proxy->session() == this) continue;
            ALOGE("an object of a third process cannot be passed on");
            return INVALID_OPERATION;
        }
    }
    iovec pieces[1 + Parcel::kMaxPieces] = {{&head, sizeof(head)}};
    WireHead wireHead;
    int count = 1;
    if (body != nullptr) {
        if (!body->nodes().empty()) nodes = WireNodesOf(*body);
        count += body->wirePieces(&wireHead, nodes.data(), pieces + 1);
    }
    const status_t status = head.descriptors == 0 ? mOutbox->Send(pieces, count, patience)
                                                  : mOutbox->Send(pieces, count, patience, body->descriptors());
    if (status == FAILED_TRANSACTION) TakeBack(nodes);
    return status;
}

// ---- Receiving ----

// Returns whether this thread reads from here on. It does not if another one does, or the session is dead.
bool Session::BeginReading() {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mIsRead || mDead) return false;
    return mIsRead = true;
}

// No complete frame may be left in the reader: the Poller does not see it.
void Session::EndReading() {
    std::lock_guard<std::mutex> lock(mMutex);
    mIsRead = false;
    // With the lock, since another thread that reads may close the descriptor.
    if (!mDead) Poller::Get().Arm(mFd, mNumber);
}

std::unique_ptr<Task> Session::Readable() {
    if (!BeginReading()) return nullptr;
    mReader.MayReceive(true);
    mKeepsCall = true;
    while (ReadFrame(false)) {
    }
    mKeepsCall = false;
    std::unique_ptr<IncomingCall> call = std::move(mKeptCall);
    EndReading();
    return call;
}

// Reads until there is something for the caller to do.
void Session::ReadFor(Waiter& waiter) {
    // Only the thread that reads changes the waiter.
    while (!waiter.done && waiter.nested.empty() && ReadFrame(true)) {
    }
    mReader.MayReceive(false);
    while (!mDead && ReadFrame(false)) {
    }
}

// Returns false at the end of the connection, and when there is no frame and the thread does not wait for one.
bool Session::ReadFrame(bool waits) {
    FrameHead head;
    std::unique_ptr<uint64_t[]> body;
    const SocketReader::Result result = mAbandoned ? SocketReader::Result::kEnd : mReader.Next(waits, &head, &body);
    if (result == SocketReader::Result::kNothing) return false;
    if (result != SocketReader::Result::kFrame) {
        if (result == SocketReader::Result::kInvalid) Abandon("invalid frame");
        Bury();
        return false;
    }
    Descriptors descriptors;
    const char* const wrong = mReader.TakeDescriptors(head.descriptors, descriptors)
                                  ? Handle(head, std::move(body), std::move(descriptors))
                                  : "a frame without its descriptors";
    if (wrong != nullptr) Abandon(wrong);
    ThreadPool::Get().TryAgain();
    return true;
}

const char* Session::Handle(const FrameHead& head, std::unique_ptr<uint64_t[]> body, Descriptors&& descriptors) {
    Parcel parcel;
    const bool hasBody = body != nullptr;
    if (hasBody) {
        if (!parcel.adopt(std::move(body), head.bodySize)) return "invalid parcel";
        parcel.setSource(shared_from_this());
        parcel.setDescriptors(std::move(descriptors));
    }
    switch (static_cast<FrameType>(head.type)) {
        case FrameType::kCall:
        case FrameType::kOneway:
            return hasBody ? HandleCall(head, std::move(parcel)) : "a call without a body";
        case FrameType::kReply:
            if (hasBody != (head.status == OK)) return "a reply must have either a body or a failure";
            return HandleReply(head, std::move(parcel));
        case FrameType::kRelease:
            return hasBody ? "a release with a body" : HandleRelease(head);
        case FrameType::kLookup:
            return hasBody ? HandleLookup(head, parcel) : "a lookup without a body";
    }
    return "unknown frame type";
}

const char* Session::HandleCall(const FrameHead& head, Parcel&& data) {
    const size_t size = head.bodySize + kOverheadOfCall;
    if (mBytesOfCalls += size; mBytesOfCalls > kMostBytesOfCalls) return "it sends calls faster than they are served";
    const bool oneway = static_cast<FrameType>(head.type) == FrameType::kOneway;
    std::vector<sp<IBinder>> nodes;
    sp<BHwBinder> target;
    std::unique_ptr<IncomingCall> call;
    const char* wrong = nullptr;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (!ResolveNodesLocked(data, &nodes)) wrong = "a call refers to an object that it never received";
        target = mNodes.Exported(head.node);
        if (target == nullptr) wrong = "a call to an object that it never received";
    }
    data.setNodes(std::move(nodes));
    call =
        std::make_unique<IncomingCall>(shared_from_this(), target, head.code, oneway, head.id, std::move(data), size);
    if (wrong != nullptr) {
        ThreadPool::Get().ReleaseLater(std::move(call));
    } else if (oneway) {
        target->onewayQueue().Push(target, std::move(call));
    } else {
        HandOver(head.parent, std::move(call));
    }
    return wrong;
}

// Passes a call to the thread that waits for its parent call. If there is none or it already has its reply, the call is
// kept by the thread that reads, if that may serve it, or goes to the pool.
void Session::HandOver(uint64_t parent, std::unique_ptr<IncomingCall> call) {
    std::shared_ptr<std::condition_variable> changed;
    if (parent != 0) {
        std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mWaiters.find(parent);
        if (found != mWaiters.end()) {
            found->second->nested.push_back(std::move(call));
            changed = found->second->changed;
        }
    }
    if (changed != nullptr) return changed->notify_one();
    if (mKeepsCall) std::swap(mKeptCall, call);
    if (call != nullptr) ThreadPool::Get().Post(std::move(call));
}

const char* Session::HandleReply(const FrameHead& head, Parcel&& results) {
    std::vector<sp<IBinder>> nodes;
    std::shared_ptr<std::condition_variable> changed;
    const char* wrong = nullptr;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (!ResolveNodesLocked(results, &nodes)) wrong = "a reply refers to an object that it never received";
        const auto found = mWaiters.find(head.id);
        if (found == mWaiters.end()) wrong = "a reply to a call that was never made";
        if (wrong == nullptr) {
            Waiter& waiter = *found->second;
            mWaiters.erase(found);
            results.setNodes(std::move(nodes));
            if (waiter.reply != nullptr) *waiter.reply = std::move(results);
            waiter.status = head.status;
            waiter.done = true;
            changed = waiter.changed;
        }
    }
    if (changed != nullptr) changed->notify_one();
    if (!nodes.empty()) ThreadPool::Get().ReleaseLater(std::move(nodes));
    return wrong;
}

const char* Session::HandleRelease(const FrameHead& head) {
    sp<BHwBinder> dropped;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (!mNodes.Unexport(head.node, head.id, &dropped)) return "it releases an object that it never received";
    }
    if (dropped != nullptr) ThreadPool::Get().ReleaseLater(std::move(dropped));
    return nullptr;
}

const char* Session::HandleLookup(const FrameHead& head, const Parcel& data) {
    if (mServices == nullptr) return "a lookup in a process without services";
    const char* name = nullptr;
    size_t length = 0;
    if (data.readText(&name, &length) != OK) return "invalid lookup";
    Parcel results;
    results.writeStrongBinder(mServices->FindStub(std::string(name, length)));
    FrameHead reply = {};
    reply.type = static_cast<uint32_t>(FrameType::kReply);
    reply.id = head.id;
    SendFrame(reply, &results, Outbox::Patience::kNone);
    ThreadPool::Get().ReleaseLater(std::move(results));
    return nullptr;
}

// ---- Objects in parcels ----

std::vector<WireNode> Session::WireNodesOf(const Parcel& parcel) {
    std::vector<WireNode> wire;
    wire.reserve(parcel.nodes().size());
    std::lock_guard<std::mutex> lock(mMutex);
    for (const sp<IBinder>& node : parcel.nodes()) {
        if (node == nullptr) {
            wire.push_back({WireNode::kNull, 0, 0});
        } else if (node->remoteBinder() != nullptr) {
            wire.push_back({WireNode::kReceivers, 0, node->remoteBinder()->number()});
        } else if (mDead) {
            wire.push_back({WireNode::kNull, 0, 0});  // will not be sent, so the table must not hold it
        } else {
            wire.push_back({WireNode::kSenders, 0, mNodes.Export(node->localBinder())});
        }
    }
    return wire;
}

// For a parcel that was not sent. The parcel still holds its objects, so nothing is destroyed here.
void Session::TakeBack(const std::vector<WireNode>& wire) {
    sp<BHwBinder> dropped;
    std::lock_guard<std::mutex> lock(mMutex);
    for (const WireNode& node : wire) {
        if (node.kind == WireNode::kSenders) mNodes.Unexport(node.number, 1, &dropped);
    }
}

// `nodes` contains the nodes resolved so far even if the peer refers to one that it never received.
bool Session::ResolveNodesLocked(const Parcel& parcel, std::vector<sp<IBinder>>* nodes) {
    size_t count = 0;
    const WireNode* const wire = parcel.wireNodes(&count);
    nodes->reserve(count);
    for (size_t i = 0; i < count; ++i) {
        sp<IBinder> node;
        switch (wire[i].kind) {
            case WireNode::kNull:
                break;
            case WireNode::kSenders:
                node = mNodes.Import(shared_from_this(), wire[i].number);
                break;
            case WireNode::kReceivers:
                node = mNodes.Exported(wire[i].number);
                if (node == nullptr) return false;
                break;
            default:
                return false;
        }
        nodes->push_back(std::move(node));
    }
    return true;
}

}  // namespace android::hardware::host
