// Raw sockets for tests: see raw_peers.h.
#include "raw_peers.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

namespace hbbtv::test {

namespace {

sockaddr_un AddressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
    return address;
}

bool Readable(int fd, std::chrono::milliseconds patience) {
    pollfd ready{fd, POLLIN, 0};
    return poll(&ready, 1, static_cast<int>(patience.count())) > 0;
}

bool ReadAll(int fd, char* bytes, size_t count, std::chrono::milliseconds patience) {
    for (size_t done = 0; done < count;) {
        if (!Readable(fd, patience)) return false;
        const ssize_t n = recv(fd, bytes + done, count - done, 0);
        if (n <= 0) return false;
        done += static_cast<size_t>(n);
    }
    return true;
}

std::optional<RawFrame> ReadFrame(int fd, std::chrono::milliseconds patience) {
    RawFrame frame;
    char header[12];
    if (!ReadAll(fd, header, sizeof(header), patience)) return std::nullopt;
    std::memcpy(&frame.size, header, 4);
    std::memcpy(&frame.type, header + 4, 4);
    std::memcpy(&frame.port, header + 8, 4);
    frame.text.resize(frame.size);
    if (!ReadAll(fd, frame.text.data(), frame.size, patience)) return std::nullopt;
    return frame;
}

void WriteAll(int fd, const std::string& bytes) {
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t n = send(fd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (n <= 0) return;  // the other side closed; what it then does not answer is what the test looks at
        done += static_cast<size_t>(n);
    }
}

}  // namespace

std::string FrameBytes(uint32_t size, int32_t type, int32_t port, const std::string& text) {
    char header[12];
    std::memcpy(header, &size, 4);
    std::memcpy(header + 4, &type, 4);
    std::memcpy(header + 8, &port, 4);
    return std::string(header, sizeof(header)) + text;
}

RawClient::RawClient(const std::string& path) : mFd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_un address = AddressOf(path);
    if (connect(mFd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0) return;
    close(mFd);
    mFd = -1;
}

RawClient::~RawClient() {
    if (mFd >= 0) close(mFd);
}

void RawClient::SendBytes(const std::string& bytes) {
    WriteAll(mFd, bytes);
}

void RawClient::Send(int32_t type, int32_t port, const std::string& text) {
    WriteAll(mFd, FrameBytes(static_cast<uint32_t>(text.size()), type, port, text));
}

std::optional<RawFrame> RawClient::Receive() {
    return ReadFrame(mFd, kPatience);
}

bool RawClient::SeesClose() {
    char byte;
    return Readable(mFd, kPatience) && recv(mFd, &byte, 1, 0) <= 0;
}

void RawClient::CloseSending() {
    shutdown(mFd, SHUT_WR);
}

LibraryStandIn::LibraryStandIn(const std::string& path)
    : mPath(path), mListening(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_un address = AddressOf(path);
    unlink(path.c_str());
    if (bind(mListening, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) std::perror("bind");
    if (listen(mListening, 10) != 0) std::perror("listen");
}

LibraryStandIn::~LibraryStandIn() {
    Disconnect();
    close(mListening);
    unlink(mPath.c_str());
}

std::optional<RawFrame> LibraryStandIn::Next(std::chrono::milliseconds patience) {
    if (mFd < 0 && Readable(mListening, patience)) mFd = accept4(mListening, nullptr, nullptr, SOCK_CLOEXEC);
    if (mFd < 0) return std::nullopt;
    return ReadFrame(mFd, patience);
}

void LibraryStandIn::Reply(const std::string& text) {
    WriteAll(mFd, FrameBytes(static_cast<uint32_t>(text.size()), 3, 7, text));
}

void LibraryStandIn::Disconnect() {
    if (mFd >= 0) close(mFd);
    mFd = -1;
}

}  // namespace hbbtv::test
