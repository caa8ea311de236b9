// Sends events to one socket that the library serves. Never blocks: events are queued in order while the connection is
// being made or busy, and dropped while the socket is not served. A drop is logged once, or, for an event with a reply,
// passed to its function. The library may stop and start again.
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
        bool triedBefore = false;                         // the connection was lost while it was being sent
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
    std::deque<Waiting> mQueue;               // the front one is being sent when mBusy
    std::shared_ptr<Connection> mConnection;  // null when there is none
    bool mBusy = false;
    int mAttempts = 0;     // connection attempts that found the other side too busy
    bool mSaidSo = false;  // logged that the socket is not served or the queue is full
    Timer mAgain;
    Timer mReplyDeadline;
};

}  // namespace hbbtv::sim
