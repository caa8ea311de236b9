#include "traffic/relay/relay.h"

#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>

#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <future>
#include <map>
#include <utility>

#include "common/failure.h"
#include "common/local_socket.h"
#include "common/process.h"
#include "common/text/counted.h"
#include "common/text/json.h"
#include "traffic/relay/claim.h"
#include "traffic/relay/control.h"
#include "traffic/relay/existing.h"
#include "traffic/relay/link.h"
#include "traffic/relay/places.h"

namespace hbbtv::traffic {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kConnectAgain{10};  // to a socket whose backlog is full
constexpr milliseconds kLook{20};  // whether connections can be ended; longer than a message takes to be recorded
constexpr milliseconds kLongestEnd{1000};
constexpr size_t kMostShown = 100;

// Two for each connection.
void AllowDescriptors() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

Peer PeerOf(int fd) {
    ucred peer{};
    socklen_t size = sizeof(peer);
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return {};
    return {peer.pid, peer.uid, ProgramOf(peer.pid)};
}

std::vector<std::string> DirectoriesOf(const RelaySettings& settings) {
    if (settings.platform.empty()) return {settings.directory};
    return {settings.directory, settings.platform};
}

// Returns an open exchange without its content, for other programs.
Json::Value ShortJson(const Record& record) {
    Json::Value value(Json::objectValue);
    value["socket"] = record.socket;
    value["family"] = record.family;
    value["event"] = record.event;
    value["operation"] = record.operation;
    if (record.code) value["code"] = *record.code;
    value["age_ms"] = static_cast<Json::UInt64>((TimeStamp().Monotonic() - record.time.Monotonic()) / 1000);
    value["library"] = ToJson(record.library);
    value["platform"] = ToJson(record.platform);
    return value;
}

}  // namespace

class Relay::Body {
  public:
    Body(const RelaySettings& settings, std::function<void(const Record&)> onRecord);
    ~Body() { End(); }

    void Run();
    void Stop();
    std::vector<Record> Open() const { return mRecorder.Open(); }
    std::string Tell(const std::string& line);
    const std::vector<std::string>& Restored() const { return mRestored; }
    std::set<std::string> Sockets() const { return mPlaces.Taken(); }

  private:
    PlacesHandlers Handlers();
    void SayExisting(bool breaks);
    void Accept(int fd, const std::string& socket, const std::string& behind);
    void Connect(const std::shared_ptr<Descriptor>& caller, const std::string& socket, const std::string& behind);
    void Add(int caller, int server, const std::string& socket);
    void Leave();
    void CloseIdle(std::chrono::steady_clock::time_point deadline);
    void End();
    std::string Answer() const;

    const RelaySettings mSettings;
    const std::vector<std::string> mDirectories;
    const TimeStamp mSince;
    asio::io_context mContext{1};
    Recorder mRecorder;
    Rules mRules;
    Places mPlaces;
    std::vector<std::unique_ptr<Control>> mControls;
    std::map<uint64_t, std::shared_ptr<Link>> mLinks;
    uint64_t mLast = 0;  // number of the last connection
    asio::steady_timer mTimer{mContext};
    std::vector<std::string> mRestored;
};

Relay::Body::Body(const RelaySettings& settings, std::function<void(const Record&)> onRecord)
    : mSettings(settings),
      mDirectories(DirectoriesOf(settings)),
      mRecorder(std::move(onRecord)),
      mPlaces(mContext, mDirectories, settings.sockets, settings.program, Handlers()) {
    for (const std::string& rule : settings.rules) mRules.Add(rule);
    AllowDescriptors();
    mRestored = mPlaces.Restored();
    for (const std::string& directory : mDirectories) {
        mControls.push_back(
            std::make_unique<Control>(mContext, Claim::ControlPath(directory), [this] { return Answer(); }));
    }
    SayExisting(settings.breaks);
    mPlaces.Take();
}

PlacesHandlers Relay::Body::Handlers() {
    return {[this](int fd, const std::string& socket, const std::string& behind) { Accept(fd, socket, behind); },
            [this](const std::string& note, const std::string& socket) { mRecorder.Note(note, socket); }};
}

// Connections that are there do not go through the relay.
void Relay::Body::SayExisting(bool breaks) {
    std::map<std::string, size_t> counts;  // by process
    std::map<std::string, size_t> failures;
    for (const std::string& directory : mDirectories) {
        for (const ExistingConnection& connection : ExistingConnections(directory, mPlaces.SocketsIn(directory))) {
            const std::string failure = breaks ? Break(connection) : "";
            if (!failure.empty()) ++failures[failure];
            if (failure.empty()) {
                ++counts[connection.process == 0 ? "an unknown process" : DescribeProcess(connection.process)];
            }
        }
    }
    for (const auto& [process, count] : counts) {
        const std::string which = Counted(count, "connection");
        mRecorder.Note(breaks ? "ended " + which + " of " + process + ", to be made again through the relay"
                              : process + " has " + which + " from before, not seen here; --break ends them",
                       "");
    }
    for (const auto& [failure, count] : failures) {
        mRecorder.Note(Counted(count, "connection") + " from before, not seen here, cannot be ended: " + failure +
                           "; restart one side",
                       "");
    }
}

void Relay::Body::Accept(int fd, const std::string& socket, const std::string& behind) {
    // What the caller has created before it has connected, as the library its socket for the events of a family, is
    // taken before the other side hears from the caller, and may connect there.
    asio::post(mContext, [this, caller = std::make_shared<Descriptor>(fd), socket, behind] {
        mPlaces.Look();
        Connect(caller, socket, behind);
    });
}

void Relay::Body::Connect(const std::shared_ptr<Descriptor>& caller, const std::string& socket,
                          const std::string& behind) {
    const int server = ConnectTo(behind);
    if (server >= 0) return Add(caller->Release(), server, socket);
    if (errno == EAGAIN) {
        const auto timer = std::make_shared<asio::steady_timer>(mContext, kConnectAgain);
        timer->async_wait([this, timer, caller, socket, behind](const asio::error_code& error) {
            if (!error) Connect(caller, socket, behind);
        });
        return;
    }
    const std::string reason = std::strerror(errno);
    mRecorder.Note("a connection of " + DescribeProcess(PeerOf(caller->Get()).pid) + " was closed: " + reason, socket);
    mPlaces.CheckOwner(socket);
}

void Relay::Body::Add(int caller, int server, const std::string& socket) {
    const RelayedConnection about{++mLast, socket, PeerOf(caller), PeerOf(server)};
    mRecorder.Connected(about);
    const auto link = std::make_shared<Link>(mContext, caller, server, about, mRules, mRecorder,
                                             [this](uint64_t number) { mLinks.erase(number); });
    mLinks[about.number] = link;
    link->Start();
}

void Relay::Body::Run() {
    const auto keepRunning = asio::make_work_guard(mContext);
    try {
        mContext.run();
    } catch (...) {
        End();  // the sockets come first
        throw;
    }
    End();
}

std::string Relay::Body::Tell(const std::string& line) {
    const auto answer = std::make_shared<std::promise<std::string>>();
    std::future<std::string> result = answer->get_future();
    asio::post(mContext, [this, answer, line] {
        try {
            answer->set_value(mRules.Tell(line));
        } catch (...) {
            answer->set_exception(std::current_exception());
        }
    });
    return result.get();
}

void Relay::Body::Stop() {
    asio::post(mContext, [this] { Leave(); });
}

// From the first step on, connections are made without the relay. Those that there are cannot be passed over to their
// ends, so they end between two exchanges.
void Relay::Body::Leave() {
    mControls.clear();
    mPlaces.GiveBack();
    CloseIdle(std::chrono::steady_clock::now() + kLongestEnd);
}

void Relay::Body::CloseIdle(std::chrono::steady_clock::time_point deadline) {
    mTimer.expires_after(kLook);
    mTimer.async_wait([this, deadline](const asio::error_code& error) {
        if (error) return;
        const bool late = std::chrono::steady_clock::now() > deadline;
        std::set<uint64_t> open;
        for (const Record& record : Open()) open.insert(record.connection);
        const auto links = mLinks;
        for (const auto& [number, link] : links) {
            if (late || (open.count(number) == 0 && !link->Busy())) link->Close("by the relay, which ends");
        }
        if (mLinks.empty()) return mContext.stop();
        CloseIdle(deadline);
    });
}

void Relay::Body::End() {
    mControls.clear();
    mPlaces.GiveBack();
    const auto links = mLinks;
    for (const auto& [number, link] : links) link->Close("by the relay, which ends");
    mRecorder.Finish();
}

std::string Relay::Body::Answer() const {
    Json::Value document(Json::objectValue);
    document["program"] = mSettings.program;
    document["process"] = getpid();
    document["directory"] = mSettings.directory;
    if (!mSettings.platform.empty()) document["platform_directory"] = mSettings.platform;
    mSince.AddTo(document["since"]);
    document["connections"] = static_cast<Json::UInt64>(mLinks.size());
    document["sockets"] = Json::Value(Json::arrayValue);
    for (const std::string& socket : mPlaces.Taken()) document["sockets"].append(socket);
    document["open"] = Json::Value(Json::arrayValue);
    for (const Record& record : Open()) {
        if (document["open"].size() < kMostShown) document["open"].append(ShortJson(record));
    }
    if (mRules.Any()) document["rules"] = mRules.List();
    return WriteJson(document);
}

Relay::Relay(const RelaySettings& settings, std::function<void(const Record&)> onRecord)
    : mBody(std::make_unique<Body>(settings, std::move(onRecord))) {}

Relay::~Relay() = default;

void Relay::Run() {
    mBody->Run();
}

void Relay::Stop() {
    mBody->Stop();
}

std::string Relay::Tell(const std::string& line) {
    return mBody->Tell(line);
}

std::vector<Record> Relay::Open() const {
    return mBody->Open();
}

std::set<std::string> Relay::Sockets() const {
    return mBody->Sockets();
}

const std::vector<std::string>& Relay::Restored() const {
    return mBody->Restored();
}

}  // namespace hbbtv::traffic
