// Events to one socket that the library serves. Never in the way: events wait in order while the connection is made or
// busy, and are dropped when nobody serves the socket: with one log line, or, where a reply is waited for, with the
// news that there is none. The library may go and come back.
#pragma once

#include <deque>
#include <memory>
#include <string>

#include "common/frame.h"
#include "core/event_loop.h"
#include "core/journal.h"
#include "family/family.h"

namespace hbbtv::sim {

class EventSender : public EventSink {
  public:
    EventSender(EventLoop& loop, const Journal& journal, std::string path, int port, EventTable events);
    ~EventSender() override;

    void Send(const std::string& event, const Json::Value& members) override;
    void SendAndWait(const std::string& event, const Json::Value& members,
                     std::function<void(const Json::Value& reply)> onReply) override;

  private:
    struct Connection;
    struct Waiting {
        std::string name;
        std::string bytes;
        std::function<void(const Json::Value&)> onReply;  // empty for one-way events
        bool triedBefore = false;                         // the connection went while it was on its way
    };

    std::string Message(int type, const std::string& event, const Json::Value& members) const;
    void Enqueue(Waiting event);
    void Work();
    bool Connect();
    void Write();
    void Written();
    void Replied(const Frame& reply);
    void Lost();
    void FinishFront(const Json::Value& reply);
    void Answer(const Waiting& event, const Json::Value& reply) const;
    void DropAll(const std::string& reason);
    void ReadFrom(const std::shared_ptr<Connection>& connection);

    EventLoop& mLoop;
    const Journal& mJournal;
    std::string mPath;
    int mPort;
    EventTable mEvents;
    std::deque<Waiting> mQueue;               // the front one is on its way when mBusy
    std::shared_ptr<Connection> mConnection;  // null when there is none
    bool mBusy = false;
    int mAttempts = 0;     // connection attempts that found the other side too busy
    bool mSaidSo = false;  // that nobody is there, or that too many events wait
    Timer mAgain;
    Timer mReplyDeadline;
};

}  // namespace hbbtv::sim
