// Invalid messages of a hostile peer, and running out of descriptors or threads.
// The hostile peer is the test itself, on the other end of a session's socket.
#include <dlfcn.h>
#include <hwbinder/ProcessState.h>
#include <poll.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>

#include <cstring>
#include <random>

#include "connection/frame.h"
#include "connection/session.h"
#include "fixtures.h"

// While it is set, this program cannot start threads.
static std::atomic<bool> gNoThreads{false};

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*), void* arg) {
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const Create create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    return gNoThreads ? EAGAIN : create(thread, attributes, start, arg);
}

namespace hbbtv::test {

namespace {

using ::android::hardware::BHwBinder;
using ::android::hardware::Parcel;
using ::android::hardware::host::FrameHead;
using ::android::hardware::host::FrameType;
using ::android::hardware::host::ServiceSource;
using ::android::hardware::host::Session;
using ::android::hardware::host::WireBuffer;
using ::android::hardware::host::WireHead;
using ::android::hardware::host::WireNode;

// The numbers of IWorkshop's methods, in the order of declaration.
constexpr uint32_t kEcho = 2;
constexpr uint32_t kSetListener = 9;
constexpr uint32_t kPostSlowly = 17;

// One workshop for all sessions of this process.
class Source : public ServiceSource {
  public:
    sp<BHwBinder> FindStub(const std::string& name) override {
        return name == "workshop" ? mStub->localBinder() : nullptr;
    }
    const sp<Workshop> mWorkshop = new Workshop;
    const sp<::android::hardware::IBinder> mStub = getOrCreateCachedBinder(mWorkshop.get());
};

Source& TheSource() {
    static Source* const source = [] {
        ::android::hardware::configureRpcThreadpool(2, false);
        ::android::hardware::ProcessState::self()->startThreadPool();
        return new Source;
    }();
    return *source;
}

using Bytes = std::vector<uint8_t>;

Bytes BodyOf(const Parcel& parcel, const std::vector<WireNode>& nodes = {}) {
    WireHead head;
    iovec pieces[Parcel::kMaxPieces];
    const int count = parcel.wirePieces(&head, nodes.data(), pieces);
    Bytes bytes;
    for (int i = 0; i < count; ++i) {
        const uint8_t* data = static_cast<const uint8_t*>(pieces[i].iov_base);
        bytes.insert(bytes.end(), data, data + pieces[i].iov_len);
    }
    return bytes;
}

void WriteString(Parcel* parcel, const hidl_string& text) {
    size_t parent = 0;
    parcel->writeBuffer(&text, sizeof(text), &parent);
    writeEmbeddedToParcel(text, parcel, parent, 0);
}

Bytes EchoBody(const hidl_string& text) {
    Parcel data;
    data.writeInterfaceToken(IWorkshop::descriptor);
    WriteString(&data, text);
    return BodyOf(data);
}

Bytes SetListenerBody(uint32_t kind, uint64_t number) {
    Parcel data;
    data.writeInterfaceToken(IWorkshop::descriptor);
    data.writeStrongBinder(nullptr);
    return BodyOf(data, {{kind, 0, number}});
}

// The peer of a session. It can write anything.
class HostilePeer {
  public:
    explicit HostilePeer(bool served = true) {
        int fds[2];
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds), 0);
        mFd = fds[0];
        mSession = Session::Start(fds[1], served ? &TheSource() : nullptr);
    }
    ~HostilePeer() { close(mFd); }

    Session& TheSession() { return *mSession; }

    static FrameHead Head(FrameType type, const Bytes& body = {}) {
        FrameHead head = {};
        head.magic = FrameHead::kMagic;
        head.type = static_cast<uint32_t>(type);
        head.bodySize = static_cast<uint32_t>(body.size());
        head.node = 1;
        head.id = 1;
        return head;
    }

    void Write(const void* data, size_t size) { send(mFd, data, size, MSG_NOSIGNAL); }
    void WriteDescriptors(size_t count) {
        char byte = 0;
        iovec piece = {&byte, 1};
        std::vector<char> control(CMSG_SPACE(count * sizeof(int)));
        msghdr message = {};
        message.msg_iov = &piece;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        cmsghdr* const head = CMSG_FIRSTHDR(&message);
        *head = {CMSG_LEN(count * sizeof(int)), SOL_SOCKET, SCM_RIGHTS};
        const std::vector<int> fds(count, mFd);
        memcpy(CMSG_DATA(head), fds.data(), count * sizeof(int));
        sendmsg(mFd, &message, MSG_NOSIGNAL);
    }
    void Send(const FrameHead& head, const Bytes& body = {}) {
        Write(&head, sizeof(head));
        if (!body.empty()) Write(body.data(), body.size());
    }

    // Returns a frame of the session, or nothing if it has closed the connection.
    std::optional<std::pair<FrameHead, Bytes>> Receive() {
        std::pair<FrameHead, Bytes> frame;
        if (recv(mFd, &frame.first, sizeof(FrameHead), MSG_WAITALL) != sizeof(FrameHead)) return std::nullopt;
        frame.second.resize(frame.first.bodySize);
        if (frame.first.bodySize > 0) recv(mFd, frame.second.data(), frame.second.size(), MSG_WAITALL);
        return frame;
    }

    // Looks up the workshop, which then has number 1.
    void LookUp(const std::string& name = "workshop") {
        Parcel data;
        data.writeText(name.data(), name.size());
        const Bytes body = BodyOf(data);
        Send(Head(FrameType::kLookup, body), body);
        const auto reply = Receive();
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->first.type, static_cast<uint32_t>(FrameType::kReply));
    }

    Bytes CallFor(uint32_t method, const Bytes& body, FrameType type = FrameType::kCall) {
        FrameHead head = Head(type, body);
        head.code = method;
        Send(head, body);
        return body;
    }

    // Returns the status of the next reply, or nothing if the connection was closed.
    std::optional<int32_t> StatusOfReply() {
        const auto reply = Receive();
        return reply ? std::optional<int32_t>(reply->first.status) : std::nullopt;
    }

    // Returns whether the session has closed the connection.
    bool IsClosed() {
        pollfd end = {mFd, POLLIN, 0};
        const bool readable = poll(&end, 1, 30000) == 1;
        char byte;
        return readable && recv(mFd, &byte, 1, 0) <= 0 && WaitFor([this] { return mSession->IsDead(); });
    }

  private:
    int mFd = -1;
    std::shared_ptr<Session> mSession;
};

template <typename T>
void Put(Bytes* body, size_t offset, T value) {
    ASSERT_LE(offset + sizeof(T), body->size());
    std::memcpy(&(*body)[offset], &value, sizeof(T));
}

// Offset of the first buffer's entry: the body of EchoBody() has two buffers and an arena.
size_t BufferTable(const Bytes& body) {
    WireHead head;
    std::memcpy(&head, body.data(), sizeof(head));
    return sizeof(head) + (head.streamSize + 7) / 8 * 8 + head.nodeCount * sizeof(WireNode);
}

class HostilePeers : public ::testing::Test {
  protected:
    // The rest of the process is not affected.
    void TearDown() override {
        HostilePeer honest;
        honest.LookUp();
        honest.CallFor(kEcho, EchoBody("alive"));
        EXPECT_EQ(honest.StatusOfReply(), 0);
    }
};

}  // namespace

TEST_F(HostilePeers, LoseTheConnectionForAnInvalidFrame) {
    const Bytes body = EchoBody("text");
    const std::vector<std::pair<const char*, std::function<void(FrameHead*)>>> damages = {
        {"magic", [](FrameHead* head) { head->magic ^= 1; }},
        {"descriptors that were not sent", [](FrameHead* head) { head->descriptors = 1; }},
        {"too many descriptors", [](FrameHead* head) { head->descriptors = 9; }},
        {"type 0", [](FrameHead* head) { head->type = 0; }},
        {"type 99", [](FrameHead* head) { head->type = 99; }},
        {"size", [](FrameHead* head) { head->bodySize -= 8; }},
        {"size that is not a multiple of 8", [](FrameHead* head) { head->bodySize -= 1; }},
        {"size above the limit", [](FrameHead* head) { head->bodySize = 0x7ffffff8; }},
        {"size of nothing", [](FrameHead* head) { head->bodySize = 0; }},
        {"unknown node", [](FrameHead* head) { head->node = 2; }},
        {"node 0", [](FrameHead* head) { head->node = 0; }},
    };
    for (const auto& [what, damage] : damages) {
        HostilePeer peer;
        peer.LookUp();
        FrameHead head = HostilePeer::Head(FrameType::kCall, body);
        head.code = kEcho;
        damage(&head);
        peer.Send(head, body);
        EXPECT_TRUE(peer.IsClosed()) << what;
    }
}

TEST_F(HostilePeers, LoseTheConnectionForMoreDescriptorsThanAFrameHas) {
    HostilePeer peer;
    peer.WriteDescriptors(9);
    EXPECT_TRUE(peer.IsClosed());
}

// A byte of a frame each, so that no frame becomes complete.
TEST_F(HostilePeers, LoseTheConnectionForDescriptorsOfNoFrame) {
    HostilePeer peer;
    for (int i = 0; i < 3; ++i) peer.WriteDescriptors(8);
    EXPECT_TRUE(peer.IsClosed());
}

TEST_F(HostilePeers, LoseTheConnectionForFramesOutOfPlace) {
    const std::vector<std::pair<const char*, std::function<void(HostilePeer*)>>> frames = {
        {"reply without a call",
         [](HostilePeer* peer) {
             FrameHead head = HostilePeer::Head(FrameType::kReply);
             head.status = ::android::UNKNOWN_ERROR;
             peer->Send(head);
         }},
        {"reply without results", [](HostilePeer* peer) { peer->Send(HostilePeer::Head(FrameType::kReply)); }},
        {"release too often",
         [](HostilePeer* peer) {
             FrameHead head = HostilePeer::Head(FrameType::kRelease);
             head.id = 2;
             peer->Send(head);
         }},
        {"release of an unknown node",
         [](HostilePeer* peer) {
             FrameHead head = HostilePeer::Head(FrameType::kRelease);
             head.node = 77;
             peer->Send(head);
         }},
        {"release with a body",
         [](HostilePeer* peer) {
             const Bytes body = EchoBody("text");
             peer->Send(HostilePeer::Head(FrameType::kRelease, body), body);
         }},
        {"lookup without a name",
         [](HostilePeer* peer) {
             const Bytes body = BodyOf(Parcel());
             peer->Send(HostilePeer::Head(FrameType::kLookup, body), body);
         }},
        {"one-way call without a body", [](HostilePeer* peer) { peer->Send(HostilePeer::Head(FrameType::kOneway)); }},
        {"unknown node as an argument",
         [](HostilePeer* peer) { peer->CallFor(kSetListener, SetListenerBody(WireNode::kReceivers, 77)); }},
        {"node of an unknown kind", [](HostilePeer* peer) { peer->CallFor(kSetListener, SetListenerBody(9, 1)); }},
        {"bytes of no meaning", [](HostilePeer* peer) { peer->Write(Bytes(4096, 0xa5).data(), 4096); }},
    };
    for (const auto& [what, send] : frames) {
        HostilePeer peer;
        peer.LookUp();
        send(&peer);
        EXPECT_TRUE(peer.IsClosed()) << what;
    }
}

TEST_F(HostilePeers, CannotLookUpWhereNothingIsServed) {
    HostilePeer peer(false);
    Parcel data;
    data.writeText("workshop", 8);
    const Bytes body = BodyOf(data);
    peer.Send(HostilePeer::Head(FrameType::kLookup, body), body);
    EXPECT_TRUE(peer.IsClosed());
}

TEST_F(HostilePeers, LoseTheConnectionForAnInvalidParcel) {
    const Bytes good = EchoBody("text");
    const size_t table = BufferTable(good);
    const size_t second = table + sizeof(WireBuffer);
    // Fields of the head, then those of the entries of the string's structure and of its characters.
    const std::vector<std::tuple<const char*, size_t, uint32_t>> damages = {
        {"stream size", offsetof(WireHead, streamSize), 4},
        {"huge stream size", offsetof(WireHead, streamSize), 0xfffffffc},
        {"odd stream size", offsetof(WireHead, streamSize), 3},
        {"node count", offsetof(WireHead, nodeCount), 1},
        {"huge node count", offsetof(WireHead, nodeCount), 0x10000000},
        {"buffer count", offsetof(WireHead, bufferCount), 1},
        {"huge buffer count", offsetof(WireHead, bufferCount), 0xffffffff},
        {"arena size", offsetof(WireHead, arenaSize), 0},
        {"huge arena size", offsetof(WireHead, arenaSize), 0xfffffff8},
        {"first buffer not at the start", table + offsetof(WireBuffer, offset), 8},
        {"first buffer longer than the arena", table + offsetof(WireBuffer, length), 0xffffffff},
        {"first buffer a child of a later one", table + offsetof(WireBuffer, parent), 1},
        {"first buffer a child of itself", table + offsetof(WireBuffer, parent), 0},
        {"second buffer over the first", second + offsetof(WireBuffer, offset), 0},
        {"second buffer not aligned", second + offsetof(WireBuffer, offset), 17},
        {"second buffer too long", second + offsetof(WireBuffer, length), 9},
        {"second buffer a child of itself", second + offsetof(WireBuffer, parent), 1},
        {"second buffer a child of a missing one", second + offsetof(WireBuffer, parent), 2},
        {"pointer not aligned", second + offsetof(WireBuffer, parentOffset), 4},
        {"pointer after the parent", second + offsetof(WireBuffer, parentOffset), 16},
        {"pointer far after the parent", second + offsetof(WireBuffer, parentOffset), 0xfffffff8},
    };
    for (const auto& [what, offset, value] : damages) {
        HostilePeer peer;
        peer.LookUp();
        Bytes body = good;
        Put(&body, offset, value);
        peer.CallFor(kEcho, body);
        EXPECT_TRUE(peer.IsClosed()) << what;
    }
}

TEST_F(HostilePeers, LoseTheConnectionForAParcelThatDoesNotMatchItsInterface) {
    const Bytes good = EchoBody("text");
    const size_t second = BufferTable(good) + sizeof(WireBuffer);
    const size_t arena = second + sizeof(WireBuffer);
    const size_t streamEnd = BufferTable(good);
    std::vector<std::pair<const char*, Bytes>> bodies;
    const auto add = [&](const char* what, size_t offset, uint32_t value) {
        bodies.emplace_back(what, good);
        Put(&bodies.back().second, offset, value);
    };
    add("string without an end", arena + 16 + 4, 0x78787878);
    add("string shorter than its structure says", arena + 8, 5);
    add("string much shorter than its structure says", arena + 8, 0xffffffff);
    add("pointer at another place of the parent", second + offsetof(WireBuffer, parentOffset), 8);
    add("string that is not a child", second + offsetof(WireBuffer, parent), WireBuffer::kNoParent);
    // The stream ends with marker and index of both buffers.
    add("wrong marker", streamEnd - 16, 0);
    add("wrong index", streamEnd - 12, 1);
    add("wrong index of the second buffer", streamEnd - 4, 0);
    for (const auto& [what, body] : bodies) {
        HostilePeer peer;
        peer.LookUp();
        peer.CallFor(kEcho, body);
        // The failure may be answered before the connection is closed.
        while (peer.Receive()) {
        }
        EXPECT_TRUE(peer.IsClosed()) << what;
    }
}

TEST_F(HostilePeers, GetAnErrorForACallWithTooFewArguments) {
    HostilePeer peer;
    peer.LookUp();
    Parcel data;
    data.writeInterfaceToken(IWorkshop::descriptor);
    peer.CallFor(kEcho, BodyOf(data));
    EXPECT_EQ(peer.StatusOfReply(), ::android::NOT_ENOUGH_DATA);
    peer.CallFor(kEcho, BodyOf(Parcel()));
    EXPECT_EQ(peer.StatusOfReply(), ::android::BAD_TYPE);
    peer.CallFor(kEcho, EchoBody("text"));
    EXPECT_EQ(peer.StatusOfReply(), 0);
}

TEST_F(HostilePeers, MaySendBackAnObjectOfAnotherInterface) {
    HostilePeer peer;
    peer.LookUp();
    // The workshop itself as a listener: it is not a listener, so the argument is null.
    peer.CallFor(kSetListener, SetListenerBody(WireNode::kReceivers, 1));
    EXPECT_EQ(peer.StatusOfReply(), 0);
    EXPECT_EQ(static_cast<sp<IListener>>(TheSource().mWorkshop->listener()), nullptr);
}

// More of them than there are threads that read.
TEST_F(HostilePeers, ThatStopInTheMiddleOfAFrameDoNotKeepOthersWaiting) {
    const Bytes body = EchoBody("text");
    const FrameHead head = HostilePeer::Head(FrameType::kCall, body);
    std::vector<std::unique_ptr<HostilePeer>> peers;
    for (int i = 0; i < 20; ++i) {
        peers.push_back(std::make_unique<HostilePeer>());
        peers.back()->Write(&head, i % 2 == 0 ? sizeof(head) : 1);
    }
    HostilePeer other;
    other.LookUp();
}

TEST_F(HostilePeers, MayDieInTheMiddleOfAFrame) {
    const Bytes body = EchoBody("text");
    for (const size_t sent : {size_t{1}, sizeof(FrameHead) - 1, sizeof(FrameHead), sizeof(FrameHead) + 5}) {
        HostilePeer peer;
        peer.LookUp();
        FrameHead head = HostilePeer::Head(FrameType::kCall, body);
        head.code = kEcho;
        Bytes frame(sizeof(head) + body.size());
        std::memcpy(frame.data(), &head, sizeof(head));
        std::memcpy(&frame[sizeof(head)], body.data(), body.size());
        peer.Write(frame.data(), sent);
    }
}

TEST_F(HostilePeers, MayDieWhileTheyAreCalled) {
    auto peer = std::make_unique<HostilePeer>();
    Session& session = peer->TheSession();
    const auto kept = session.shared_from_this();
    Caller caller([&] {
        Parcel data;
        Parcel reply;
        EXPECT_EQ(session.Transact(5, 1, data, &reply, false), ::android::DEAD_OBJECT);
    });
    EXPECT_TRUE(peer->Receive().has_value());
    peer.reset();
    caller.Join();
    EXPECT_TRUE(session.IsDead());
}

TEST_F(HostilePeers, CannotAnswerWithAnInvalidReply) {
    HostilePeer peer;
    Caller caller([&] {
        Parcel data;
        Parcel reply;
        EXPECT_EQ(peer.TheSession().Transact(5, 1, data, &reply, false), ::android::DEAD_OBJECT);
    });
    const auto call = peer.Receive();
    ASSERT_TRUE(call.has_value());
    Bytes body = EchoBody("text");
    Put<uint32_t>(&body, offsetof(WireHead, arenaSize), 8);
    FrameHead head = HostilePeer::Head(FrameType::kReply, body);
    head.id = call->first.id;
    peer.Send(head, body);
    caller.Join();
    EXPECT_TRUE(peer.IsClosed());
}

TEST_F(HostilePeers, LoseTheConnectionWhenTheyFlood) {
    HostilePeer peer;
    peer.LookUp();
    Parcel data;
    data.writeInterfaceToken(IWorkshop::descriptor);
    data.writeUint32(1);
    const std::string much(1000 * 1000, 'x');
    data.writeText(much.data(), much.size());
    const Bytes body = BodyOf(data);
    // The first one is held, so the others never finish.
    for (int i = 0; i < 80; ++i) peer.CallFor(kPostSlowly, body, FrameType::kOneway);
    EXPECT_TRUE(peer.IsClosed());
    // Calls that had arrived still run.
    for (int i = 0; i < 67; ++i) EXPECT_TRUE(TheSource().mWorkshop->letGo().isOk());
    EXPECT_TRUE(WaitFor([] { return Posted(TheSource().mWorkshop).size() >= 60; }));
}

TEST_F(HostilePeers, LoseTheConnectionWhenTheyNeverReadTheirReplies) {
    HostilePeer peer;
    peer.LookUp();
    const Bytes body = EchoBody(std::string(500 * 1000, 'x'));
    for (int i = 0; i < 200 && !peer.TheSession().IsDead(); ++i) peer.CallFor(kEcho, body);
    HostilePeer other;
    other.LookUp();
    other.CallFor(kEcho, EchoBody("meanwhile"));
    EXPECT_EQ(other.StatusOfReply(), 0);
}

// The process survives any bytes. The seed is fixed, so a failure can be reproduced.
TEST_F(HostilePeers, DoNoHarmWithRandomDamage) {
    Parcel data;
    data.writeInterfaceToken(IWorkshop::descriptor);
    hidl_vec<hidl_string> words = {"one", "two", "three"};
    size_t parent = 0;
    size_t child = 0;
    data.writeBuffer(&words, sizeof(words), &parent);
    writeEmbeddedToParcel(words, &data, parent, 0, &child);
    for (size_t i = 0; i < words.size(); ++i) writeEmbeddedToParcel(words[i], &data, child, i * sizeof(hidl_string));
    const Bytes good = BodyOf(data);
    constexpr uint32_t kWords = 4;
    std::mt19937 random(20);
    for (int round = 0; round < 600; ++round) {
        HostilePeer peer;
        peer.LookUp();
        Bytes body = good;
        const size_t changes = 1 + random() % 4;
        for (size_t i = 0; i < changes; ++i) body[random() % body.size()] = static_cast<uint8_t>(random());
        // Methods that read an object, a number or nothing are tried with these bytes as well.
        peer.CallFor(round % 3 != 0 ? kWords : 1 + random() % 14, body);
    }
}

TEST(Exhaustion, OfDescriptorsRefusesConnectionsButKeepsTheServiceAlive) {
    const ScratchDirectory scratch;
    Peer peer({"serve", "default", "2"});
    const sp<IWorkshop> service = IWorkshop::getService();
    EXPECT_EQ(Echo(service, "alive"), "alive");
    const std::filesystem::directory_iterator used("/proc/" + std::to_string(peer.Pid()) + "/fd");
    const rlim_t most = static_cast<rlim_t>(std::distance(begin(used), end(used))) + 3;
    const rlimit limit = {most, most};
    ASSERT_EQ(prlimit(peer.Pid(), RLIMIT_NOFILE, &limit, nullptr), 0);

    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string link = scratch / "hidl/vantorel.test@1.0::IWorkshop,default";
    const std::string socketName = std::filesystem::read_symlink(link).string();
    std::snprintf(address.sun_path, sizeof(address.sun_path), "%s", (scratch / ("hidl/" + socketName)).c_str());
    std::vector<int> connections;
    for (int i = 0; i < 10; ++i) {
        connections.push_back(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        EXPECT_EQ(connect(connections.back(), reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    }
    EXPECT_TRUE(peer.WaitForOutput("out of file descriptors")) << peer.Output();
    EXPECT_EQ(Echo(service, "alive"), "alive");
    // Refused immediately instead of waiting.
    Peer client({"find", "default"});
    EXPECT_TRUE(client.WaitForOutput("not there")) << client.Output();
    for (const int connection : connections) close(connection);
    EXPECT_TRUE(client.WaitForOutput("found")) << client.Output();
}

TEST(Exhaustion, OfThreadsIsReportedAndRecoveredFrom) {
    const ScratchDirectory scratch;
    Peer peer({"serve", "default", "2"});
    gNoThreads = true;
    // Without a reader thread, there is no session.
    EXPECT_EQ(IWorkshop::tryGetService(), nullptr);
    const sp<Workshop> own = new Workshop;
    EXPECT_EQ(own->registerAsService("own"), ::android::UNKNOWN_ERROR);
    gNoThreads = false;
    const sp<IWorkshop> service = IWorkshop::tryGetService();
    ASSERT_NE(service, nullptr);

    // No thread for the pool: calls wait until there is one.
    const sp<Listener> listener = new Listener;
    gNoThreads = true;
    EXPECT_TRUE(service->setListener(listener).withDefault(false));
    EXPECT_EQ(service->emit(3).withDefault(0), 3u);
    EXPECT_EQ(Ask(service, "why"), "answer to why");
    gNoThreads = false;
    EXPECT_EQ(service->emit(1).withDefault(0), 1u);
    EXPECT_TRUE(WaitFor([&] { return listener->Events().size() == 4; }));
    EXPECT_EQ(own->registerAsService("own"), ::android::OK);
}

}  // namespace hbbtv::test
