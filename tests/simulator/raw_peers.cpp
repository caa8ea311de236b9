#include "raw_peers.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace hbbtv::test {

namespace {

int NewSocket() {
    return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

sockaddr_un AddressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
    return address;
}

int Connect(const std::string& path) {
    const int fd = NewSocket();
    const sockaddr_un address = AddressOf(path);
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0) return fd;
    close(fd);
    return -1;
}

}  // namespace

RawClient::RawClient(const std::string& path) : mConnection(Connect(path)) {}

void RawClient::CloseSending() {
    shutdown(mConnection.Fd(), SHUT_WR);
}

LibraryStandIn::LibraryStandIn(const std::string& path) : mPath(path), mListening(NewSocket()) {
    const sockaddr_un address = AddressOf(path);
    unlink(path.c_str());
    if (bind(mListening, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) std::perror("bind");
    if (listen(mListening, 10) != 0) std::perror("listen");
}

LibraryStandIn::~LibraryStandIn() {
    close(mListening);
    unlink(mPath.c_str());
}

std::optional<Frame> LibraryStandIn::Next(std::chrono::milliseconds patience) {
    if (!mConnection) {
        pollfd ready{mListening, POLLIN, 0};
        if (poll(&ready, 1, static_cast<int>(patience.count())) <= 0) return std::nullopt;
        mConnection.emplace(accept4(mListening, nullptr, nullptr, SOCK_CLOEXEC));
    }
    const auto message = mConnection->ReadFrame(patience);
    if (message) mPort = message->port;
    return message;
}

void LibraryStandIn::Reply(const std::string& text) {
    if (mConnection) mConnection->Write(FrameBytes(kReply, mPort, text));
}

}  // namespace hbbtv::test
