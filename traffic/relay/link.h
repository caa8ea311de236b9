// One relayed connection: two sockets, and the bytes between them. Bytes are passed on as soon as they arrive, and
// unchanged; what the other side does not take yet is kept, one chunk at most, and the sender waits meanwhile, as it
// would without the relay. An end that is closed, or half closed, is closed on the other side.
#pragma once

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <functional>
#include <memory>
#include <string>

#include "traffic/understanding/frame_walk.h"
#include "traffic/understanding/recorder.h"

namespace hbbtv::traffic {

// All functions are called by the thread of the io_context.
class Link : public std::enable_shared_from_this<Link> {
  public:
    // Takes ownership of the descriptors. `ofLibrary`: the library serves the socket. `onClosed` is called once, when
    // both are closed.
    Link(asio::io_context& context, int caller, int server, uint64_t number, bool ofLibrary, Recorder& recorder,
         std::function<void(uint64_t)> onClosed);

    void Start();

    // Ends the connection for both sides.
    void Close(const std::string& how);

    // Returns whether bytes wait to be passed on.
    bool Busy() const;

    uint64_t Number() const { return mNumber; }

  private:
    // One direction.
    struct Way {
        FrameWalk walk;        // of the bytes that have arrived
        std::string waiting;   // bytes that the receiver has not taken
        size_t sent = 0;       // of these
        bool ended = false;    // the sender sends no more
        bool gone = false;     // it has closed its socket, so that it reads no more either
        bool refused = false;  // the receiver takes no more
    };

    Way& Of(Direction direction) { return mWays[static_cast<size_t>(direction)]; }
    asio::posix::stream_descriptor& Sender(Direction direction);
    asio::posix::stream_descriptor& Receiver(Direction direction);
    void AwaitBytes(Direction direction);
    void Receive(Direction direction);
    void PassOn(Direction direction, const char* bytes, size_t count);
    size_t BeginIn(Way& way, const char* bytes, size_t count);
    void Refuse(Direction direction);
    void AwaitRoom(Direction direction);
    void Flush(Direction direction);
    void End(Direction direction);
    void Finish(Direction direction);

    asio::posix::stream_descriptor mCaller;
    asio::posix::stream_descriptor mServer;
    const uint64_t mNumber;
    const bool mOfLibrary;  // the server is the library
    Recorder& mRecorder;
    std::function<void(uint64_t)> mOnClosed;
    Way mWays[2];
    bool mClosed = false;
};

}  // namespace hbbtv::traffic
