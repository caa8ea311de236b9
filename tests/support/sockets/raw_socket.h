// Frames of the wire, written and read without any code of the library, for both ends of an endpoint.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "wait_for.h"

namespace hbbtv::test {

constexpr int kOneWay = 1;
constexpr int kRequest = 2;
constexpr int kReply = 3;

struct Frame {
    int type;
    int port;
    std::string payload;
};

// Returns the frame's bytes: size, type and port as little-endian 32-bit numbers, then the payload.
std::string FrameBytes(int type, int port, const std::string& payload);

// Returns the first 12 bytes only, with any size.
std::string HeaderBytes(uint32_t size, int type, int port);

// A connected stream socket, closed by the destructor.
class RawConnection {
  public:
    explicit RawConnection(int fd) : mFd(fd) {}
    ~RawConnection();
    RawConnection(RawConnection&& other) noexcept : mFd(other.mFd) { other.mFd = -1; }
    RawConnection& operator=(RawConnection&&) = delete;

    // Connects to a socket file; the process exits with a message when that fails.
    static RawConnection To(const std::string& path);

    int Fd() const { return mFd; }

    // Returns whether all bytes were written; a closed peer raises no signal.
    bool Write(const std::string& bytes);

    // Returns exactly this many bytes, or fewer when the peer closes or patience ends.
    std::string Read(size_t size, std::chrono::milliseconds patience = kPatience);

    // Returns a whole frame, or nothing.
    std::optional<Frame> ReadFrame(std::chrono::milliseconds patience = kPatience);

    // Waits until the peer closes; false when it does not in time or sends anything before.
    bool PeerCloses(std::chrono::milliseconds patience = kPatience);

    void Close();

  private:
    int mFd;
};

// The platform's end of an endpoint: listens on a socket file, records every frame and answers requests.
class FakePlatform {
  public:
    // Returns the payload of the reply (empty for a frame of size 0), or nothing for no reply.
    using Answer = std::function<std::optional<std::string>(const Frame& request)>;

    // Listens on `name` in the directory TMPDIR.
    explicit FakePlatform(const std::string& name, Answer answer);

    // Answers every request with the same text.
    FakePlatform(const std::string& name, const std::string& reply);
    ~FakePlatform();
    FakePlatform(const FakePlatform&) = delete;
    FakePlatform& operator=(const FakePlatform&) = delete;

    void SetAnswer(Answer answer);
    void SetReply(const std::string& reply);

    // Returns all frames so far, in order.
    std::vector<Frame> Frames() const;
    bool WaitForFrames(size_t count) const;
    void ForgetFrames();

    // Connections accepted so far.
    int Connections() const { return mAccepted; }

  private:
    void Accept();
    void Serve(int fd);

    int mListenFd;
    std::string mPath;
    std::atomic<int> mAccepted{0};
    mutable std::mutex mMutex;
    Answer mAnswer;                   // guarded by mMutex
    std::vector<Frame> mFrames;       // guarded by mMutex
    std::list<int> mFds;              // guarded by mMutex
    bool mStopping = false;           // guarded by mMutex
    std::list<std::thread> mThreads;  // of the accept thread only, once it runs
    std::thread mAcceptThread;
};

}  // namespace hbbtv::test
