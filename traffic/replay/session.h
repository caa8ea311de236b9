// A replay that runs. One thread; the loop calls everything.
#pragma once

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "traffic/compare/handles.h"
#include "traffic/replay/agenda.h"
#include "traffic/replay/frame_socket.h"
#include "traffic/replay/matcher.h"
#include "traffic/replay/replay.h"

namespace hbbtv::traffic {

class ReplaySession {
  public:
    ReplaySession(const Conversation& conversation, const ReplaySettings& settings,
                  std::function<void(const ReplayFinding&)> onFinding);

    ReplaySummary Run();

  private:
    // A connection to the other side, for the messages of one connection of the recording.
    struct Link {
        std::shared_ptr<FrameSocket> socket;
        std::deque<size_t> queue;  // exchanges to be sent, the first one may be open
        bool open = false;         // the first one waits for its reply
        size_t left = 0;           // exchanges that are still to be sent
        bool retrying = false;
        std::optional<Agenda::Clock::time_point> failing;  // since when it cannot be connected
    };
    using LinkKey = std::pair<std::string, uint64_t>;  // socket, recorded connection

    void NeedPlatform() const;
    void ServeRequests();
    void PlanServing();
    void Serve(const std::string& socket);
    void ServeEvents(const std::string& socket);
    void Accepted(const std::string& socket, const std::shared_ptr<FrameSocket>& connection);
    void Came(const std::string& socket, const std::shared_ptr<FrameSocket>& connection, const Frame& frame);
    void Missed(const std::string& socket, const std::shared_ptr<FrameSocket>& connection, const Frame& frame,
                const Message& message);
    void Answer(size_t exchange, const std::shared_ptr<FrameSocket>& connection);

    // The messages that this side sends.
    void Plan(size_t exchange, uint64_t gap);
    void Send(size_t exchange);
    void SendFirst(Link& link);
    bool Connect(Link& link, const Exchange& exchange);
    bool Retry(Link& link, const Exchange& exchange);
    void Replied(const LinkKey& key, const Frame& frame);
    void LinkLost(const LinkKey& key);
    void Finish(Link& link, bool replied);
    void CompareReply(const Exchange& exchange, const Message& reply);

    // The instants of the recording.
    void Happened(std::optional<size_t> instant);
    void HappenedBoth(size_t exchange);
    void SendOverdue(const Exchange& came);
    void Advance();
    template <typename AnyExchange>
    bool Sends(const AnyExchange& exchange) const {
        return exchange.event == mSettings.asPlatform;
    }
    void Watch();
    void GiveUp();

    void Report(ReplayFinding::Kind kind, const Exchange& exchange, const std::string& text);

    const Conversation& mConversation;
    const ReplaySettings mSettings;
    const std::function<void(const ReplayFinding&)> mOnFinding;
    asio::io_context mContext;
    asio::signal_set mSignals;
    asio::steady_timer mLimit;
    asio::steady_timer mPatience;
    Agenda mAgenda;
    Handles mHandles;
    Matcher mMatcher;
    std::map<LinkKey, Link> mLinks;
    std::vector<bool> mHappened;                        // of each instant
    std::vector<bool> mPlanned;                         // of each exchange that this side sends
    std::map<std::string, std::deque<size_t>> mUnsent;  // of each family, in their order; may have some that were sent
    size_t mPosition = 0;                               // the first instant that has not happened
    std::set<std::string> mGivenUp;                     // events that are not waited for again
    ReplaySummary mSummary;
    std::map<std::string, std::unique_ptr<FrameListener>> mListeners;  // by socket
    std::map<size_t, std::vector<std::string>> mServeBefore;           // by exchange that this side sends: sockets
    std::set<std::string> mHasEvents;                                  // sockets with recorded events
};

}  // namespace hbbtv::traffic
