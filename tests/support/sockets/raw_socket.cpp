#include "raw_socket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace hbbtv::test {

namespace {

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "%s: %s\n", what.c_str(), strerror(errno));
    std::abort();
}

sockaddr_un Address(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof(address.sun_path)) Fail("path too long: " + path);
    memcpy(address.sun_path, path.c_str(), path.size());
    return address;
}

int NewSocket() {
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) Fail("socket");
    return fd;
}

uint32_t Number(const std::string& bytes, size_t at) {
    uint32_t number;
    memcpy(&number, bytes.data() + at, sizeof(number));
    return number;
}

}  // namespace

std::string HeaderBytes(uint32_t size, int type, int port) {
    const uint32_t words[3] = {size, static_cast<uint32_t>(type), static_cast<uint32_t>(port)};
    return std::string(reinterpret_cast<const char*>(words), sizeof(words));
}

std::string FrameBytes(int type, int port, const std::string& payload) {
    return HeaderBytes(static_cast<uint32_t>(payload.size()), type, port) + payload;
}

RawConnection::~RawConnection() {
    Close();
}

RawConnection RawConnection::To(const std::string& path) {
    const sockaddr_un address = Address(path);
    const int fd = NewSocket();
    if (!WaitFor([&] { return connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0; })) {
        Fail("connect " + path);
    }
    return RawConnection(fd);
}

bool RawConnection::Write(const std::string& bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = send(mFd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (n < 0) return false;
        done += static_cast<size_t>(n);
    }
    return true;
}

std::string RawConnection::Read(size_t size, std::chrono::milliseconds patience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    std::string bytes;
    while (bytes.size() < size) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd ready{mFd, POLLIN, 0};
        if (left.count() <= 0 || poll(&ready, 1, static_cast<int>(left.count())) <= 0) break;
        char buffer[65536];
        const ssize_t n = recv(mFd, buffer, std::min(sizeof(buffer), size - bytes.size()), 0);
        if (n <= 0) break;
        bytes.append(buffer, static_cast<size_t>(n));
    }
    return bytes;
}

std::optional<Frame> RawConnection::ReadFrame(std::chrono::milliseconds patience) {
    const std::string header = Read(12, patience);
    if (header.size() < 12) return std::nullopt;
    Frame frame{static_cast<int>(Number(header, 4)), static_cast<int>(Number(header, 8)), {}};
    frame.payload = Read(Number(header, 0), patience);
    if (frame.payload.size() < Number(header, 0)) return std::nullopt;
    return frame;
}

bool RawConnection::PeerCloses(std::chrono::milliseconds patience) {
    pollfd ready{mFd, POLLIN, 0};
    if (poll(&ready, 1, static_cast<int>(patience.count())) <= 0) return false;
    char byte;
    return recv(mFd, &byte, 1, 0) <= 0;
}

void RawConnection::Close() {
    if (mFd >= 0) close(mFd);
    mFd = -1;
}

FakePlatform::FakePlatform(const std::string& name, Answer answer)
    : mListenFd(NewSocket()), mPath(std::string(getenv("TMPDIR")) + "/" + name), mAnswer(std::move(answer)) {
    const sockaddr_un address = Address(mPath);
    unlink(mPath.c_str());
    if (bind(mListenFd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) Fail("bind " + mPath);
    if (listen(mListenFd, 100) != 0) Fail("listen " + mPath);
    mAcceptThread = std::thread([this] { Accept(); });
}

FakePlatform::FakePlatform(const std::string& name, const std::string& reply)
    : FakePlatform(name, [reply](const Frame&) { return reply; }) {}

FakePlatform::~FakePlatform() {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mStopping = true;
        shutdown(mListenFd, SHUT_RDWR);
        for (const int fd : mFds) shutdown(fd, SHUT_RDWR);
    }
    mAcceptThread.join();
    for (std::thread& thread : mThreads) thread.join();
    close(mListenFd);
    unlink(mPath.c_str());
}

void FakePlatform::SetAnswer(Answer answer) {
    std::lock_guard<std::mutex> lock(mMutex);
    mAnswer = std::move(answer);
}

void FakePlatform::SetReply(const std::string& reply) {
    SetAnswer([reply](const Frame&) { return reply; });
}

std::vector<Frame> FakePlatform::Frames() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mFrames;
}

bool FakePlatform::WaitForFrames(size_t count) const {
    return WaitFor([&] { return Frames().size() >= count; });
}

void FakePlatform::ForgetFrames() {
    std::lock_guard<std::mutex> lock(mMutex);
    mFrames.clear();
}

void FakePlatform::Accept() {
    int fd;
    while ((fd = accept4(mListenFd, nullptr, nullptr, SOCK_CLOEXEC)) >= 0) {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mStopping) {
            close(fd);
            return;
        }
        mFds.push_back(fd);
        mThreads.emplace_back([this, fd] { Serve(fd); });
        ++mAccepted;
    }
}

void FakePlatform::Serve(int fd) {
    RawConnection connection(fd);
    while (const std::optional<Frame> frame = connection.ReadFrame(std::chrono::hours(1))) {
        Answer answer;
        {
            std::lock_guard<std::mutex> lock(mMutex);
            mFrames.push_back(*frame);
            answer = mAnswer;
        }
        if (frame->type != kRequest) continue;
        const std::optional<std::string> reply = answer(*frame);
        if (reply) connection.Write(FrameBytes(kReply, frame->port, *reply));
    }
    std::lock_guard<std::mutex> lock(mMutex);
    mFds.remove(fd);
    connection.Close();
}

}  // namespace hbbtv::test
