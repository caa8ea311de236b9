#include "server/frame_connection.h"

#include <array>
#include <asio/local/stream_protocol.hpp>
#include <asio/write.hpp>
#include <memory>

#include "core/event_loop.h"
#include "core/journal.h"

namespace hbbtv::sim {

namespace {

using Socket = asio::local::stream_protocol::socket;

class FrameConnection : public std::enable_shared_from_this<FrameConnection> {
  public:
    FrameConnection(EventLoop& loop, int fd, std::string name, FrameHandler handler)
        : mSocket(loop.Context(), asio::local::stream_protocol(), fd),
          mName(std::move(name)),
          mHandler(std::move(handler)) {}

    void Read() {
        mSocket.async_read_some(asio::buffer(mChunk),
                                [self = shared_from_this()](const asio::error_code& error, size_t count) {
                                    if (error) return self->Ended();
                                    self->mReader.Take(self->mChunk.data(), count);
                                    self->HandleAll();
                                });
    }

  private:
    void HandleAll() {
        while (const auto message = mReader.Next()) {
            if (const auto reply = mHandler(*message)) mReplies += Encode(*reply);
        }
        if (const auto size = mReader.Oversized()) {
            Journal::Log(mName + ": a message header announces " + std::to_string(*size) + " bytes; connection closed");
            return;
        }
        if (mReplies.empty()) return Read();
        asio::async_write(mSocket, asio::buffer(mReplies),
                          [self = shared_from_this()](const asio::error_code& error, size_t) {
                              if (error) return;
                              self->mReplies.clear();
                              self->Read();
                          });
    }

    void Ended() const {
        if (mReader.InMessage()) Journal::Log(mName + ": the peer disconnected in the middle of a message");
    }

    Socket mSocket;
    std::string mName;
    FrameHandler mHandler;
    FrameReader mReader;
    std::string mReplies;
    std::array<char, 16384> mChunk;
};

}  // namespace

void ServeFrames(EventLoop& loop, int fd, const std::string& name, FrameHandler handler) {
    std::make_shared<FrameConnection>(loop, fd, name, std::move(handler))->Read();
}

}  // namespace hbbtv::sim
