// The two ends of the wire as a test needs them, made of system calls only: a client that sends what it is told to, and
// a stand-in for the library's served event socket. Every wait has a deadline.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "wait_for.h"

namespace hbbtv::test {

struct RawFrame {
    uint32_t size = 0;
    int32_t type = 0;
    int32_t port = 0;
    std::string text;
};

class RawClient {
  public:
    explicit RawClient(const std::string& path);
    ~RawClient();
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    bool Connected() const { return mFd >= 0; }
    void SendBytes(const std::string& bytes);
    void Send(int32_t type, int32_t port, const std::string& text);
    std::optional<RawFrame> Receive();

    // Whether the other side closed the connection, waiting for it. Nothing may be left to read.
    bool SeesClose();

    // No more bytes will come from here.
    void CloseSending();

  private:
    int mFd;
};

class LibraryStandIn {
  public:
    explicit LibraryStandIn(const std::string& path);
    ~LibraryStandIn();
    LibraryStandIn(const LibraryStandIn&) = delete;
    LibraryStandIn& operator=(const LibraryStandIn&) = delete;

    // The next message from whoever connects.
    std::optional<RawFrame> Next(std::chrono::milliseconds patience = kPatience);

    void Reply(const std::string& text);

    // Ends the connection, as the other process does when it dies; the socket stays served.
    void Disconnect();

  private:
    std::string mPath;
    int mListening;
    int mFd = -1;
};

// One frame's bytes with any header.
std::string FrameBytes(uint32_t size, int32_t type, int32_t port, const std::string& text);

}  // namespace hbbtv::test
