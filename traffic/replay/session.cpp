#include "traffic/replay/session.h"

#include <algorithm>
#include <csignal>
#include <cstring>

#include "common/failure.h"
#include "common/local_socket.h"
#include "traffic/compare/difference.h"
#include "traffic/view/line.h"
#include "traffic/view/members.h"
#include "wire/endpoint.h"
#include "wire/protocol.h"

namespace hbbtv::traffic {

namespace {

using std::chrono::microseconds;

// Times of a recording can be absurd.
microseconds Bounded(uint64_t time) {
    constexpr uint64_t kDay = 86400000000;
    return microseconds(std::min(time, kDay));
}

std::string Bytes(const Message& message, const Json::Value& json) {
    const std::string payload = message.Readable() ? PayloadOf(Message{0, 0, 0, json, ""}) : message.raw;
    return Encode({message.type, message.port, payload});
}

Message MessageOf(const Frame& frame) {
    Message message;
    message.type = frame.type;
    message.port = frame.port;
    message.size = static_cast<uint32_t>(frame.payload.size());
    SetPayload(message, frame.payload);
    return message;
}

const MessageFacts& FactsOf(const Exchange& exchange, Side side) {
    return FactsOf(exchange.family, exchange.operation, exchange.event, side);
}

bool EndsObject(const Exchange& exchange) {
    if (exchange.family.empty() || exchange.event) return false;
    const Json::Value* operation = FindFamily(exchange.family).Operation(exchange.operation);
    return operation != nullptr && (*operation)["effect"] == "release";
}

}  // namespace

ReplaySession::ReplaySession(const Conversation& conversation, const ReplaySettings& settings,
                             std::function<void(const ReplayFinding&)> onFinding)
    : mConversation(conversation),
      mSettings(settings),
      mOnFinding(std::move(onFinding)),
      mContext(1),
      mSignals(mContext, SIGINT, SIGTERM),
      mLimit(mContext),
      mPatience(mContext),
      mAgenda(mContext),
      mMatcher(conversation, !settings.asPlatform, mHandles,
               {settings.strict, settings.repeats || !settings.asPlatform}),
      mHappened(conversation.instants.size()),
      mPlanned(conversation.exchanges.size()) {
    for (size_t i = 0; i < conversation.exchanges.size(); ++i) {
        const ExchangeBrief& exchange = conversation.exchanges.Brief(i);
        ++(exchange.event ? mSummary.events : mSummary.requests);
        if (!Sends(exchange)) continue;
        ++mLinks[{*exchange.socket, exchange.connection}].left;
        mUnsent[*exchange.family].push_back(i);
    }
    if (settings.asPlatform) {
        ServeRequests();
    } else {
        NeedPlatform();
        PlanServing();
    }
}

void ReplaySession::NeedPlatform() const {
    std::string path;
    for (const auto& [key, link] : mLinks) {
        path = mSettings.directory + "/" + key.first;
        if (Descriptor(ConnectTo(path)).Get() >= 0) return;
    }
    if (!path.empty()) throw Failure(kUnavailable, path + ": " + std::strerror(errno) + "; start the platform");
}

void ReplaySession::ServeRequests() {
    for (size_t i = 0; i < mConversation.exchanges.size(); ++i) {
        const ExchangeBrief& exchange = mConversation.exchanges.Brief(i);
        if (!Sends(exchange)) Serve(*exchange.socket);
    }
    for (const Endpoint& endpoint : AllEndpoints()) {
        if (endpoint.ofPlatform) Serve(endpoint.socket);
    }
}

// The library serves the socket of a family when a client first uses it, which platforms notice: before the first
// request of the family, or the last request before its first event.
void ReplaySession::PlanServing() {
    std::set<std::string> families;
    std::optional<size_t> before;  // the latest request
    for (size_t i = 0; i < mConversation.exchanges.size(); ++i) {
        const ExchangeBrief& exchange = mConversation.exchanges.Brief(i);
        if (Sends(exchange)) before = i;
        if (exchange.event) mHasEvents.insert(*exchange.socket);
        if (!families.insert(exchange.family->empty() ? *exchange.socket : *exchange.family).second) continue;
        std::string socket = *exchange.socket;
        if (!exchange.event) {
            const bool events =
                !exchange.family->empty() && FindFamily(*exchange.family).protocol["endpoints"].isMember("events");
            if (!events) continue;
            socket = EventsOf(FindFamily(*exchange.family)).socket;
        }
        mServeBefore[before.value_or(0)].push_back(socket);
    }
    // Before the first request there may be events only.
    for (const std::string& socket : mServeBefore[0]) ServeEvents(socket);
}

void ReplaySession::Serve(const std::string& socket) {
    if (mListeners.count(socket) != 0) return;
    mListeners[socket] = std::make_unique<FrameListener>(
        mContext, mSettings.directory + "/" + socket,
        [this, socket](const std::shared_ptr<FrameSocket>& connection) { Accepted(socket, connection); });
}

// A service can serve the socket at the same time if the recording needs no event of it.
void ReplaySession::ServeEvents(const std::string& socket) {
    try {
        Serve(socket);
    } catch (const Failure&) {
        if (mHasEvents.count(socket) != 0) throw;
    }
}

ReplaySummary ReplaySession::Run() {
    mSignals.async_wait([this](const asio::error_code& error, int) {
        if (error) return;
        mSummary.interrupted = !mSettings.asPlatform;
        mContext.stop();
    });
    if (mSettings.limit) {
        mLimit.expires_after(*mSettings.limit);
        mLimit.async_wait([this](const asio::error_code& error) {
            if (error) return;
            mSummary.interrupted = !mSettings.asPlatform;
            mContext.stop();
        });
    }
    if (!mSettings.asPlatform) mAgenda.Add(microseconds(0), [this] { Advance(); });
    mContext.run();
    if (mSettings.asPlatform) return mSummary;
    for (const size_t left : mMatcher.Left()) {
        if (!mSummary.interrupted)
            Report(ReplayFinding::Kind::Missing, mConversation.exchanges[left], "it did not come");
    }
    return mSummary;
}

void ReplaySession::Accepted(const std::string& socket, const std::shared_ptr<FrameSocket>& connection) {
    // Not an owner: the connection owns the handler.
    const std::weak_ptr<FrameSocket> weak = connection;
    connection->Start({[this, socket, weak](const Frame& frame) {
                           if (const auto strong = weak.lock()) Came(socket, strong, frame);
                       },
                       [] {}});
}

void ReplaySession::Came(const std::string& socket, const std::shared_ptr<FrameSocket>& connection,
                         const Frame& frame) {
    if (frame.type != kRequest && frame.type != kOneWay) return;
    const Message message = MessageOf(frame);
    const std::optional<size_t> found = mMatcher.Take(socket, message);
    if (!found) return Missed(socket, connection, frame, message);
    const Exchange exchange = mConversation.exchanges[*found];
    mHandles.Learn(FactsOf(exchange, Side::Message), exchange.message.json, message.json);
    if (!mHappened[mConversation.begins[*found]]) {
        ++(exchange.event ? mSummary.eventsReplayed : mSummary.requestsReplayed);
    }
    if (mSettings.asPlatform) SendOverdue(exchange);
    Happened(mConversation.begins[*found]);
    if (frame.type == kOneWay) return;
    if (!exchange.reply && !exchange.lost) return;  // the recorded one was not answered, either
    const bool now = !mSettings.asPlatform;
    const microseconds recorded = Bounded(*exchange.end - exchange.begin);
    const microseconds delay = now ? microseconds(0) : mSettings.delay ? microseconds(*mSettings.delay) : recorded;
    mAgenda.Add(delay, [this, exchange = *found, connection] { Answer(exchange, connection); });
}

void ReplaySession::Missed(const std::string& socket, const std::shared_ptr<FrameSocket>& connection,
                           const Frame& frame, const Message& message) {
    Record record;
    record.message = message;
    Identify(record, socket);
    ++mSummary.misses;
    mOnFinding({ReplayFinding::Kind::Miss, 0, FullName(record) + " " + MembersText(record, record.message, Names()),
                mMatcher.Nearest(socket, message)});
    if (mSettings.asPlatform && mSettings.closeOnMiss) return connection->Close();
    if (frame.type != kRequest) return;
    const std::string failure = mSettings.asPlatform ? "{\"ret\":-1}" : "null\n";
    connection->Send(Encode({kReply, frame.port, failure}));
}

void ReplaySession::Answer(size_t number, const std::shared_ptr<FrameSocket>& connection) {
    const Exchange exchange = mConversation.exchanges[number];
    if (exchange.lost) {
        connection->Close();
    } else {
        const MessageFacts& facts = FactsOf(exchange, Side::Reply);
        const Json::Value json = mHandles.Translated(facts, exchange.reply->json);
        connection->Send(Bytes(*exchange.reply, json));
        mHandles.Learn(facts, exchange.reply->json, json);
    }
    Happened(mConversation.ends[number]);
}

void ReplaySession::Plan(size_t exchange, uint64_t gap) {
    if (mPlanned[exchange]) return;
    mPlanned[exchange] = true;
    microseconds delay = Bounded(gap);
    if (mSettings.delay)
        delay = mSettings.asPlatform ? std::min(delay, microseconds(*mSettings.delay)) : *mSettings.delay;
    mAgenda.Add(delay, [this, exchange] { Send(exchange); });
}

void ReplaySession::Send(size_t number) {
    const Exchange exchange = mConversation.exchanges[number];
    for (const std::string& socket : mServeBefore[number]) ServeEvents(socket);
    mServeBefore.erase(number);
    Link& link = mLinks[{exchange.socket, exchange.connection}];
    link.queue.push_back(number);
    SendFirst(link);
    // What the recording has after it does not wait for a socket that may never be served.
    if (link.failing) HappenedBoth(number);
}

// An event that no client of the recording received need not be delivered.
void ReplaySession::SendFirst(Link& link) {
    while (!link.open && !link.queue.empty()) {
        const size_t number = link.queue.front();
        const Exchange exchange = mConversation.exchanges[number];
        if (!link.socket && !Connect(link, exchange)) {
            const int reason = errno;
            const bool unheard = mSettings.asPlatform && exchange.reply && !exchange.reply->json.isObject();
            if (!unheard && Retry(link, exchange)) return;
            if (!unheard) {
                Report(ReplayFinding::Kind::Undelivered, exchange,
                       std::string("cannot connect: ") + std::strerror(reason));
            }
            Finish(link, unheard);
            HappenedBoth(number);
            continue;
        }
        const MessageFacts& facts = FactsOf(exchange, Side::Message);
        const Json::Value json = mHandles.Translated(facts, exchange.message.json);
        link.socket->Send(Bytes(exchange.message, json));
        mHandles.Learn(facts, exchange.message.json, json);
        // Without a recorded reply, there may be none: what follows is sent on another connection.
        link.open = exchange.message.type == kRequest && exchange.reply;
        if (!link.open) Finish(link, true);
        Happened(mConversation.begins[number]);
    }
}

// Leaves errno if it fails.
bool ReplaySession::Connect(Link& link, const Exchange& exchange) {
    const int fd = ConnectTo(mSettings.directory + "/" + exchange.socket);
    if (fd < 0) return false;
    link.socket = std::make_shared<FrameSocket>(mContext, fd);
    link.failing.reset();
    const LinkKey key{exchange.socket, exchange.connection};
    link.socket->Start({[this, key](const Frame& frame) { Replied(key, frame); }, [this, key] { LinkLost(key); }});
    return true;
}

// Returns whether to try again, as the library may be about to serve the socket.
bool ReplaySession::Retry(Link& link, const Exchange& exchange) {
    constexpr microseconds kPause(20000);
    if (!mSettings.asPlatform) return false;
    if (!link.failing) link.failing = Agenda::Clock::now();
    if (Agenda::Clock::now() - *link.failing > mSettings.timeout) return false;
    if (std::exchange(link.retrying, true)) return true;
    mAgenda.Add(kPause, [this, key = LinkKey{exchange.socket, exchange.connection}] {
        mLinks[key].retrying = false;
        SendFirst(mLinks[key]);
    });
    return true;
}

void ReplaySession::Replied(const LinkKey& key, const Frame& frame) {
    Link& link = mLinks[key];
    if (!link.open) return;
    const size_t number = link.queue.front();
    const Exchange exchange = mConversation.exchanges[number];
    const Message reply = MessageOf(frame);
    CompareReply(exchange, reply);
    mHandles.Learn(FactsOf(exchange, Side::Reply), exchange.reply->json, reply.json);
    if (!mSettings.asPlatform && EndsObject(exchange)) {
        mHandles.Forget(FactsOf(exchange, Side::Message), exchange.message.json);
    }
    Finish(link, true);
    Happened(mConversation.ends[number]);
    SendFirst(link);
}

void ReplaySession::LinkLost(const LinkKey& key) {
    Link& link = mLinks[key];
    link.socket.reset();
    if (!link.open) return;
    const size_t number = link.queue.front();
    Report(ReplayFinding::Kind::Missing, mConversation.exchanges[number],
           "the connection was closed instead of a reply");
    Finish(link, false);
    Happened(mConversation.ends[number]);
    SendFirst(link);
}

// Ends the first exchange of the link.
void ReplaySession::Finish(Link& link, bool replied) {
    const Exchange exchange = mConversation.exchanges[link.queue.front()];
    link.queue.pop_front();
    link.open = false;
    --link.left;
    if (replied) ++(exchange.event ? mSummary.eventsReplayed : mSummary.requestsReplayed);
    const bool unanswered = exchange.message.type == kRequest && !exchange.reply;
    if (!link.socket || (link.left > 0 && !unanswered)) return;
    // One that is not answered stays open, as long as this process runs.
    if (!unanswered) link.socket->Close();
    link.socket.reset();
}

void ReplaySession::CompareReply(const Exchange& exchange, const Message& reply) {
    const std::vector<Difference> differences =
        Differences(FactsOf(exchange, Side::Reply), *exchange.reply, reply, mHandles);
    if (differences.empty()) return;
    std::string text;
    for (const Difference& difference : differences) text += (text.empty() ? "" : "; ") + difference.text;
    const bool clocks = std::all_of(differences.begin(), differences.end(), [](const auto& one) { return one.clock; });
    Report(clocks ? ReplayFinding::Kind::Clock : ReplayFinding::Kind::Difference, exchange, text);
}

void ReplaySession::Happened(std::optional<size_t> instant) {
    if (!instant || mHappened[*instant]) return;
    mHappened[*instant] = true;
    if (!mSettings.asPlatform) return Advance();
    const size_t next = *instant + 1;
    if (next == mConversation.instants.size()) return;
    const Instant& following = mConversation.instants[next];
    if (following.side == Side::Reply || !Sends(mConversation.exchanges.Brief(following.exchange))) return;
    Plan(following.exchange, following.time - mConversation.instants[*instant].time);
}

void ReplaySession::HappenedBoth(size_t exchange) {
    Happened(mConversation.begins[exchange]);
    Happened(mConversation.ends[exchange]);
}

// Sends the events of the family that the recording has before the request, as what they wait for may not be asked.
void ReplaySession::SendOverdue(const Exchange& came) {
    std::deque<size_t>& unsent = mUnsent[came.family];
    while (!unsent.empty() && mConversation.exchanges.Brief(unsent.front()).begin < came.begin) {
        const size_t event = unsent.front();
        unsent.pop_front();
        if (mPlanned[event]) continue;
        mPlanned[event] = true;
        Send(event);
    }
}

// Sends the next request when everything before it has happened.
void ReplaySession::Advance() {
    const std::vector<Instant>& instants = mConversation.instants;
    for (; mPosition < instants.size(); ++mPosition) {
        const Instant& instant = instants[mPosition];
        const ExchangeBrief& exchange = mConversation.exchanges.Brief(instant.exchange);
        const bool unneeded = (exchange.lost && instant.side == Side::Reply) ||
                              (!Sends(exchange) && mGivenUp.count(*exchange.socket + *exchange.operation) != 0);
        if (mHappened[mPosition] || unneeded) continue;
        if (Sends(exchange) && instant.side == Side::Message) {
            Plan(instant.exchange, mPosition == 0 ? 0 : instant.time - instants[mPosition - 1].time);
        }
        return Watch();
    }
    mPatience.cancel();
    mContext.stop();
}

// Gives up what the recording has next if nothing happens for too long.
void ReplaySession::Watch() {
    const Instant& instant = mConversation.instants[mPosition];
    const ExchangeBrief& exchange = mConversation.exchanges.Brief(instant.exchange);
    if (Sends(exchange) && instant.side == Side::Message) return void(mPatience.cancel());
    // Events come at their times.
    const uint64_t before = mPosition == 0 ? instant.time : mConversation.instants[mPosition - 1].time;
    mPatience.expires_after(mSettings.timeout + Bounded(instant.time - before));
    mPatience.async_wait([this](const asio::error_code& error) {
        if (!error) GiveUp();
    });
}

void ReplaySession::GiveUp() {
    const Instant& instant = mConversation.instants[mPosition];
    const Exchange exchange = mConversation.exchanges[instant.exchange];
    if (!Sends(exchange)) {
        mGivenUp.insert(exchange.socket + exchange.operation);
        return Advance();
    }
    Link& link = mLinks[{exchange.socket, exchange.connection}];
    Report(ReplayFinding::Kind::Missing, exchange, "no reply within " + FormatDuration(mSettings.timeout));
    if (link.socket) link.socket->Close();
    link.socket.reset();
    if (link.open && link.queue.front() == instant.exchange) Finish(link, false);
    Happened(mPosition);
    SendFirst(link);
}

void ReplaySession::Report(ReplayFinding::Kind kind, const Exchange& exchange, const std::string& text) {
    if (kind == ReplayFinding::Kind::Difference) ++mSummary.differences;
    if (kind == ReplayFinding::Kind::Clock) ++mSummary.clocks;
    if (kind == ReplayFinding::Kind::Missing) ++mSummary.missing;
    if (kind == ReplayFinding::Kind::Undelivered) ++mSummary.undelivered;
    const std::string members = MembersText(exchange, exchange.message, Names());
    mOnFinding({kind, exchange.number, FullName(exchange) + " " + members, text});
}

}  // namespace hbbtv::traffic
