// Calls, replies and everything else that goes over a connection, and its end.
#include "session.h"

#define LOG_TAG "hidl_host"
#include <log/log.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include "socket_reader.h"

namespace android {
namespace hardware {
namespace host {

namespace {

// Arguments of calls that have arrived and are not done. Above it the peer sends faster than it is ever served.
constexpr size_t kMostBytesOfCalls = 64 * 1024 * 1024;

// A call takes memory beside its arguments.
constexpr size_t kOverheadOfCall = 256;

}  // namespace

// ---- Life ----

Session::Session(int fd, ServiceSource* services)
    : mServices(services), mFd(fd), mOutbox(std::make_shared<Outbox>(fd)) {
    ucred peer = {};
    socklen_t size = sizeof(peer);
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0) mPeer = peer.pid;
}

Session::~Session() = default;

std::shared_ptr<Session> Session::Start(int fd, ServiceSource* services) {
    const auto session = std::make_shared<Session>(fd, services);
    const bool started = StartThread("hidl-reader", false, [session] { session->Read(); });
    return started ? session : nullptr;
}

// The reader comes to the end of the stream, or sees the flag, and buries the session.
void Session::Abandon(const char* why) {
    if (mAbandoned.exchange(true)) return;
    ALOGE("closing the connection with process %d: %s", mPeer, why);
    mOutbox->Shutdown();
}

// Only the reader gets here, when it has handed on all that came.
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
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mDead) return DEAD_OBJECT;
        head.id = mNextId++;
        mWaiters.emplace(head.id, &waiter);
    }
    const status_t status = SendFrame(head, &data, Outbox::Patience::kSome);
    if (status == OK) return Wait(waiter);
    std::lock_guard<std::mutex> lock(mMutex);
    mWaiters.erase(head.id);
    // The peer cannot know this call, but it may have guessed its number.
    for (std::unique_ptr<IncomingCall>& call : waiter.nested) ThreadPool::Get().Post(std::move(call));
    return status;
}

// Returns when the reply is there and every call that came on behalf of this one is served.
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
        head.status = sent;  // the caller learns why there is no result
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

// Any thread.
status_t Session::SendFrame(FrameHead head, const Parcel* body, Outbox::Patience patience) {
    head.magic = FrameHead::kMagic;
    std::vector<WireNode> nodes;
    if (body != nullptr) {
        if (body->writeError() != OK) return body->writeError();
        if (body->wireSize() > Parcel::kMaxSize) return FAILED_TRANSACTION;
        head.bodySize = static_cast<uint32_t>(body->wireSize());
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
    const status_t status = mOutbox->Send(pieces, count, patience);
    if (status == FAILED_TRANSACTION) TakeBack(nodes);
    return status;
}

// ---- Receiving ----

void Session::Read() {
    SocketReader reader(mFd);
    while (!mAbandoned && ReadFrame(reader)) {
    }
    Bury();
}

// False at the end of the connection.
bool Session::ReadFrame(SocketReader& reader) {
    FrameHead head;
    if (!reader.Read(&head, sizeof(head))) return false;
    if (head.magic != FrameHead::kMagic || head.zero != 0 || head.bodySize > Parcel::kMaxSize ||
        head.bodySize % 8 != 0) {
        Abandon("a frame is damaged");
        return false;
    }
    std::unique_ptr<uint64_t[]> body;
    if (head.bodySize > 0) {
        body.reset(new uint64_t[head.bodySize / 8]);
        if (!reader.Read(body.get(), head.bodySize)) return false;
    }
    const char* const wrong = Handle(head, std::move(body));
    if (wrong != nullptr) Abandon(wrong);
    ThreadPool::Get().TryAgain();
    return wrong == nullptr;
}

const char* Session::Handle(const FrameHead& head, std::unique_ptr<uint64_t[]> body) {
    Parcel parcel;
    const bool hasBody = body != nullptr;
    if (hasBody) {
        if (!parcel.adopt(std::move(body), head.bodySize)) return "a parcel is damaged";
        parcel.setSource(shared_from_this());
    }
    switch (static_cast<FrameType>(head.type)) {
        case FrameType::kCall:
        case FrameType::kOneway:
            return hasBody ? HandleCall(head, std::move(parcel)) : "a call has no body";
        case FrameType::kReply:
            if (hasBody != (head.status == OK)) return "a reply has a body or a failure, not both";
            return HandleReply(head, std::move(parcel));
        case FrameType::kRelease:
            return hasBody ? "a release has a body" : HandleRelease(head);
        case FrameType::kLookup:
            return hasBody ? HandleLookup(head, parcel) : "a lookup has no body";
    }
    return "a frame of unknown type";
}

const char* Session::HandleCall(const FrameHead& head, Parcel&& data) {
    const size_t size = head.bodySize + kOverheadOfCall;
    if (mBytesOfCalls += size; mBytesOfCalls > kMostBytesOfCalls) return "it floods this process with calls";
    const bool oneway = static_cast<FrameType>(head.type) == FrameType::kOneway;
    std::vector<sp<IBinder>> nodes;
    sp<BHwBinder> target;
    std::unique_ptr<IncomingCall> call;
    const char* wrong = nullptr;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (!ResolveNodesLocked(data, &nodes)) wrong = "a call names an object that it never had";
        target = mNodes.Exported(head.node);
        if (target == nullptr) wrong = "a call for an object that it never had";
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

// To the thread that waits for the call on whose behalf this one is made; else, or when that call has its reply
// already, to the pool.
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
    if (changed == nullptr) return ThreadPool::Get().Post(std::move(call));
    changed->notify_one();
}

const char* Session::HandleReply(const FrameHead& head, Parcel&& results) {
    std::vector<sp<IBinder>> nodes;
    std::shared_ptr<std::condition_variable> changed;
    const char* wrong = nullptr;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (!ResolveNodesLocked(results, &nodes)) wrong = "a reply names an object that it never had";
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
        if (!mNodes.Unexport(head.node, head.id, &dropped)) return "it releases what it never had";
    }
    if (dropped != nullptr) ThreadPool::Get().ReleaseLater(std::move(dropped));
    return nullptr;
}

const char* Session::HandleLookup(const FrameHead& head, const Parcel& data) {
    if (mServices == nullptr) return "a lookup in a process that serves nothing here";
    const char* name = nullptr;
    size_t length = 0;
    if (data.readText(&name, &length) != OK) return "a lookup is damaged";
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
            wire.push_back({WireNode::kNull, 0, 0});  // will not be sent: the table is not to hold it any more
        } else {
            wire.push_back({WireNode::kSenders, 0, mNodes.Export(node->localBinder())});
        }
    }
    return wire;
}

// The parcel was not sent after all. Its objects are still held by it, so nothing is destroyed here.
void Session::TakeBack(const std::vector<WireNode>& wire) {
    sp<BHwBinder> dropped;
    std::lock_guard<std::mutex> lock(mMutex);
    for (const WireNode& node : wire) {
        if (node.kind == WireNode::kSenders) mNodes.Unexport(node.number, 1, &dropped);
    }
}

// The nodes resolved so far are in `nodes` also when the peer names one that it never had.
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

}  // namespace host
}  // namespace hardware
}  // namespace android
