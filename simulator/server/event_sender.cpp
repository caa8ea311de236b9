#include "server/event_sender.h"

#include <array>
#include <asio/local/stream_protocol.hpp>
#include <asio/write.hpp>
#include <cerrno>
#include <cstring>

#include "common/local_socket.h"
#include "common/text/json.h"
#include "wire/message.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kLongestQueue = 10000;
constexpr std::chrono::milliseconds kBusyPause{20};
constexpr int kBusyAttempts = 250;
constexpr std::chrono::seconds kReplyPatience{5};

}  // namespace

// Handlers keep it alive; one that runs after the sender has dropped it finds `owner` null and does nothing.
struct EventSender::Connection {
    Connection(EventLoop& loop, int fd, EventSender* sender)
        : socket(loop.Context(), asio::local::stream_protocol(), fd), owner(sender) {}

    asio::local::stream_protocol::socket socket;
    EventSender* owner;
    FrameReader reader;
    std::array<char, 4096> chunk;
};

EventSender::EventSender(EventLoop& loop, const Journal& journal, std::string path, int port, EventTable events)
    : mLoop(loop),
      mJournal(journal),
      mPath(std::move(path)),
      mPort(port),
      mEvents(std::move(events)),
      mAgain(loop),
      mReplyDeadline(loop) {}

EventSender::~EventSender() {
    if (mConnection) mConnection->owner = nullptr;
}

std::string EventSender::Message(int type, const std::string& event, const Json::Value& members) const {
    Json::Value message = mEvents.at(event);
    for (auto member = members.begin(); member != members.end(); ++member) message[member.name()] = *member;
    return Encode({type, mPort, WireText(message)});
}

void EventSender::Send(const std::string& event, const Json::Value& members) {
    if (mJournal.Tracing()) mJournal.Event(event, Readable(members), "");
    Enqueue({event, Message(kOneWay, event, members), nullptr});
}

void EventSender::SendAndWait(const std::string& event, const Json::Value& members,
                              std::function<void(const Json::Value&)> onReply) {
    if (mJournal.Tracing()) mJournal.Event(event, Readable(members), "waiting for a reply");
    Enqueue({event, Message(kRequest, event, members), std::move(onReply)});
}

// The work is posted, so that an event caused by a request is sent after the reply to that request.
void EventSender::Enqueue(Waiting event) {
    if (mQueue.size() >= kLongestQueue) {
        if (!mSaidSo) Journal::Log(mPath + ": no process reads the events; further ones are dropped");
        mSaidSo = true;
        Answer(event, Json::Value());
        return;
    }
    mQueue.push_back(std::move(event));
    if (!mAgain.Running()) mAgain.Start(std::chrono::milliseconds(0), [this] { Work(); });
}

void EventSender::Work() {
    if (mBusy || mQueue.empty()) return;
    if (mConnection || Connect()) Write();
}

bool EventSender::Connect() {
    const int fd = ConnectTo(mPath);
    if (fd < 0) {
        if (errno == EAGAIN && ++mAttempts < kBusyAttempts) {
            mAgain.Start(kBusyPause, [this] { Work(); });
        } else {
            DropAll(std::strerror(errno));
        }
        return false;
    }
    if (mSaidSo) Journal::Log(mPath + ": served again");
    mSaidSo = false;
    mAttempts = 0;
    mConnection = std::make_shared<Connection>(mLoop, fd, this);
    ReadFrom(mConnection);
    return true;
}

// Reads replies, and notices at once when the peer disconnects.
void EventSender::ReadFrom(const std::shared_ptr<Connection>& connection) {
    connection->socket.async_read_some(asio::buffer(connection->chunk),
                                       [connection](const asio::error_code& error, size_t count) {
                                           EventSender* self = connection->owner;
                                           if (self == nullptr) return;
                                           connection->reader.Take(connection->chunk.data(), count);
                                           if (error || connection->reader.Oversized()) return self->Lost();
                                           while (const auto frame = connection->reader.Next()) self->Replied(*frame);
                                           self->ReadFrom(connection);
                                       });
}

void EventSender::Write() {
    mBusy = true;
    asio::async_write(mConnection->socket, asio::buffer(mQueue.front().bytes),
                      [connection = mConnection](const asio::error_code& error, size_t) {
                          EventSender* self = connection->owner;
                          if (self == nullptr) return;
                          if (error) return self->Lost();
                          self->Written();
                      });
}

void EventSender::Written() {
    if (!mQueue.front().onReply) return FinishFront(Json::Value());
    mReplyDeadline.Start(kReplyPatience, [this] {
        mQueue.front().triedBefore = true;
        Lost();
    });
}

void EventSender::Replied(const Frame& frame) {
    if (!mReplyDeadline.Running() || frame.type != kReply) return;
    mReplyDeadline.Cancel();
    Json::Value reply;
    try {
        reply = ParseJson(frame.payload);
    } catch (const BadJson&) {
        // An invalid reply counts as none.
    }
    FinishFront(reply);
}

void EventSender::FinishFront(const Json::Value& reply) {
    const Waiting event = std::move(mQueue.front());
    mQueue.pop_front();
    mBusy = false;
    Answer(event, reply);
    Work();
}

void EventSender::Answer(const Waiting& event, const Json::Value& reply) const {
    if (!event.onReply) return;
    if (mJournal.Tracing()) mJournal.Event(event.name, "", reply.isNull() ? "no reply" : "< " + Readable(reply));
    event.onReply(reply);
}

// The peer disconnected. The event that was being sent is sent once more, on a new connection.
void EventSender::Lost() {
    mConnection->owner = nullptr;
    mConnection.reset();
    mReplyDeadline.Cancel();
    if (!mBusy) return;
    if (mQueue.front().triedBefore) return FinishFront(Json::Value());
    mQueue.front().triedBefore = true;
    mBusy = false;
    mAgain.Start(std::chrono::milliseconds(0), [this] { Work(); });
}

// Events with a reply get null; the others are logged.
void EventSender::DropAll(const std::string& reason) {
    mAttempts = 0;
    std::deque<Waiting> dropped;
    dropped.swap(mQueue);
    for (const Waiting& event : dropped) {
        if (!event.onReply && !mSaidSo) {
            Journal::Log("event " + event.name + " dropped, and so are later ones until " + mPath +
                         " is served: " + reason);
            mSaidSo = true;
        }
        Answer(event, Json::Value());
    }
}

}  // namespace hbbtv::sim
