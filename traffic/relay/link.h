// One relayed connection: two sockets, and the bytes between them. Bytes are passed on as soon as they arrive, and
// unchanged; what the other side does not take yet is kept, one chunk at most, and the sender waits meanwhile, as it
// would without the relay. An end that is closed, or half closed, is closed on the other side. While there are rules,
// whole messages are passed on instead of chunks.
#pragma once

#include <array>
#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>
#include <functional>
#include <memory>
#include <string>

#include "traffic/rules/shaping.h"
#include "traffic/understanding/frame_walk.h"
#include "traffic/understanding/recorder.h"

namespace hbbtv::traffic {

// All functions are called by the thread of the io_context.
class Link : public std::enable_shared_from_this<Link> {
  public:
    // Takes ownership of the descriptors. `onClosed` is called once, when both are closed.
    Link(asio::io_context& context, int caller, int server, const RelayedConnection& about, Rules& rules,
         Recorder& recorder, std::function<void(uint64_t)> onClosed);

    void Start();

    // Ends the connection for both sides.
    void Close(const std::string& how);

    // Returns whether bytes wait to be passed on.
    bool Busy() const;

  private:
    using Socket = asio::local::stream_protocol::socket;

    // One direction.
    struct Way {
        explicit Way(asio::io_context& context) : timer(context) {}

        std::array<char, 16384> chunk;  // for the sender's next bytes
        FrameWalk walk;                 // of the bytes that were passed on without being collected
        std::string waiting;            // bytes that the receiver has not taken
        size_t sent = 0;                // of these
        bool reading = false;           // waits for the sender
        bool writing = false;           // waits for the receiver
        bool ended = false;             // the sender sends no more
        bool gone = false;              // it has closed its socket, so that it reads no more either
        bool refused = false;           // the receiver takes no more
        bool held = false;              // by a rule, as the next two
        uint64_t rate = 0;              // bytes a second
        bool closing = false;
        asio::steady_timer timer;
    };

    Way& Of(Direction direction) { return mWays[static_cast<size_t>(direction)]; }
    Socket& Sender(Direction direction);
    Socket& Receiver(Direction direction);
    void AwaitBytes(Direction direction);
    void Receive(Direction direction, const asio::error_code& error, size_t count);
    void Take(Direction direction, const char* bytes, size_t count);
    void PassOn(Direction direction, const char* bytes, size_t count);
    size_t BeginIn(Direction direction, const char* bytes, size_t count);
    void Send(Direction direction, const char* bytes, size_t count);
    void Refuse(Direction direction);
    void AwaitRoom(Direction direction);
    void AwaitTime(Direction direction, std::chrono::milliseconds time, void (Link::*then)(Direction));
    void Flush(Direction direction);
    void Continue(Direction direction);
    void Follow(Direction direction, const Shaping::Step& step);
    void Release(Direction direction);
    void Deliver(Direction direction);
    void Finish(Direction direction);

    Socket mCaller;
    Socket mServer;
    const RelayedConnection mAbout;
    Shaping mShaping;
    Recorder& mRecorder;
    std::function<void(uint64_t)> mOnClosed;
    Way mWays[2];
    Verdict mVerdicts[2];  // of the message of each way that is held
    bool mClosed = false;
};

}  // namespace hbbtv::traffic
