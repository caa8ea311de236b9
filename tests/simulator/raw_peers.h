// The two ends of the wire as a test of the simulator needs them: a client that sends what it is told to, and a
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

    // What cannot be sent because the other side has closed shows in what it then does not answer.
    void SendBytes(const std::string& bytes) { mConnection.Write(bytes); }
    void Send(int type, int port, const std::string& text) { SendBytes(FrameBytes(type, port, text)); }
    std::optional<Frame> Receive() { return mConnection.ReadFrame(); }

    // Whether the other side closed the connection, waiting for it. Nothing may be left to read.
    bool SeesClose() { return mConnection.PeerCloses(); }

    // No more bytes will come from here.
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

    // The next message from whoever connects.
    std::optional<Frame> Next(std::chrono::milliseconds patience = kPatience);

    void Reply(const std::string& text);

    // Ends the connection, as the other process does when it dies; the socket stays served.
    void Disconnect() { mConnection.reset(); }

  private:
    std::string mPath;
    int mListening;
    std::optional<RawConnection> mConnection;
};

}  // namespace hbbtv::test
