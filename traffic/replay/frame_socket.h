// Sockets whose messages arrive and leave whole, on an asio loop.
#pragma once

#include <sys/stat.h>

#include <array>
#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <functional>
#include <memory>
#include <string>

#include "common/frame.h"

namespace hbbtv::traffic {

// A connection. It exists until the other side or Close() ends it.
class FrameSocket : public std::enable_shared_from_this<FrameSocket> {
  public:
    struct Handler {
        std::function<void(const Frame&)> message;
        std::function<void()> closed;  // by the other side, or after an error
    };

    // Takes ownership of a connected socket.
    FrameSocket(asio::io_context& context, int fd);

    void Start(Handler handler);
    void Send(const std::string& bytes);

    // Ends the connection when everything has been written. No handler is called after that.
    void Close();

  private:
    void Read();
    void Write();
    void Lost();

    asio::local::stream_protocol::socket mSocket;
    Handler mHandler;
    FrameReader mReader;
    std::string mWaiting;  // to be written
    std::string mWriting;
    bool mClosing = false;
    std::array<char, 16384> mChunk;
};

// A socket file that this process serves. The destructor removes the file.
class FrameListener {
  public:
    // Replaces a file that no process serves. Throws Failure(kUsage) if one does, or if the path cannot be served.
    FrameListener(asio::io_context& context, const std::string& path,
                  std::function<void(std::shared_ptr<FrameSocket>)> accepted);
    ~FrameListener();
    FrameListener(const FrameListener&) = delete;
    FrameListener& operator=(const FrameListener&) = delete;

  private:
    void Accept();

    asio::io_context& mContext;
    const std::string mPath;
    const std::function<void(std::shared_ptr<FrameSocket>)> mAccepted;
    asio::local::stream_protocol::acceptor mAcceptor;
    struct stat mFile {};  // which file is ours
};

}  // namespace hbbtv::traffic
