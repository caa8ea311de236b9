// The two ends of the wire for a test of the simulator: a client that sends any bytes, and a
// stand-in for the library's served event socket. Every wait has a deadline.
#pragma once

#include <optional>
#include <string>

#include "raw_socket.h"

namespace hbbtv::test {

class RawClient {
  public:
    // Tries once to connect.
    explicit RawClient(const std::string& path);

    bool Connected() const { return mConnection.Fd() >= 0; }

    // A send to a closed connection is ignored: the missing reply shows it.
    void SendBytes(const std::string& bytes) { mConnection.Write(bytes); }
    void Send(int type, int port, const std::string& text) { SendBytes(FrameBytes(type, port, text)); }
    std::optional<Frame> Receive() { return mConnection.ReadFrame(); }

    // Waits until the other side closes the connection; false if it does not or if anything is left to read.
    bool SeesClose() { return mConnection.PeerCloses(); }

    // Shuts down this side's sending.
    void CloseSending();

  private:
    RawConnection mConnection;
};

class LibraryStandIn {
  public:
    explicit LibraryStandIn(const std::string& path);
    ~LibraryStandIn();
    LibraryStandIn(const LibraryStandIn&) = delete;
    LibraryStandIn& operator=(const LibraryStandIn&) = delete;

    // Returns the next message from whoever connects.
    std::optional<Frame> Next(std::chrono::milliseconds patience = kPatience);

    // Replies to the last message.
    void Reply(const std::string& text);

    // Closes the connection, as if this process died; the socket is still served.
    void Disconnect() { mConnection.reset(); }

  private:
    std::string mPath;
    int mListening;
    std::optional<RawConnection> mConnection;
    int mPort = 0;  // of the last message
};

}  // namespace hbbtv::test
