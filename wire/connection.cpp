#include "wire/connection.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

#include "common/failure.h"
#include "wire/endpoint.h"

namespace hbbtv {

namespace {

using Clock = std::chrono::steady_clock;

constexpr Milliseconds kConnectAgain{10};
constexpr int kConnectAttempts = 100;

std::string WhyNot(const std::string& path, int error) {
    switch (LookAt(path).state) {
        case Finding::State::Missing:
            return "no such socket; is the other side running with the same directory?";
        case Finding::State::Stale:
            return "no process serves this socket (stale file); restart the other side";
        case Finding::State::Forbidden:
            return "permission denied; the mode of the socket should be 777, and its directory searchable";
        case Finding::State::NoSocket:
            return "not a socket; remove or rename the file, and restart the other side";
        default:
            if (path.size() <= kLongestSocketPath) return std::strerror(error);
            return "the path is longer than " + std::to_string(kLongestSocketPath) +
                   " bytes, the limit of socket addresses; use a shorter directory";
    }
}

int Connect(const std::string& path) {
    for (int i = 0; i < kConnectAttempts; ++i) {
        const int fd = ConnectTo(path);
        if (fd >= 0) return fd;
        if (errno != EAGAIN) throw Failure(kUnavailable, "cannot connect to " + path + ": " + WhyNot(path, errno));
        poll(nullptr, 0, static_cast<int>(kConnectAgain.count()));
    }
    throw Failure(kTimeout, "cannot connect to " + path + ": the other side does not accept connections; restart it");
}

}  // namespace

WireConnection::WireConnection(const std::string& path) : mPath(path), mSocket(Connect(path)) {}

bool WireConnection::Wait(short events, Clock::time_point deadline) const {
    while (true) {
        const auto left = std::chrono::ceil<Milliseconds>(deadline - Clock::now()).count();
        pollfd entry{mSocket.Get(), events, 0};
        const int ready = poll(&entry, 1, left > 0 ? static_cast<int>(left) : 0);
        if (ready > 0) return true;
        if (ready == 0 || errno != EINTR) return false;
    }
}

void WireConnection::Send(const std::string& bytes, Milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    for (size_t sent = 0; sent < bytes.size();) {
        if (!Wait(POLLOUT, deadline)) {
            throw Failure(kTimeout,
                          mPath + ": the other side did not read the message within " + FormatDuration(limit));
        }
        const ssize_t count = send(mSocket.Get(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count > 0) sent += static_cast<size_t>(count);
        if (count < 0 && errno != EAGAIN && errno != EINTR) {
            throw Failure(kPeerLost, mPath + ": connection lost: " + std::strerror(errno));
        }
    }
}

Frame WireConnection::Receive(Milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    while (true) {
        if (const auto frame = mReader.Next()) return *frame;
        if (const auto size = mReader.Oversized()) {
            throw Failure(kInvalidReply, mPath + ": the header of the reply announces " + std::to_string(*size) +
                                             " bytes, more than any message has");
        }
        if (!Wait(POLLIN, deadline)) {
            throw Failure(kTimeout, mPath + ": no reply within " + FormatDuration(limit) +
                                        "; the other side hangs: check its log, or restart it");
        }
        char bytes[65536];
        const ssize_t count = recv(mSocket.Get(), bytes, sizeof(bytes), 0);
        if (count > 0) mReader.Take(bytes, static_cast<size_t>(count));
        if (count == 0)
            throw Failure(kPeerLost, mPath + ": the other side closed the connection without a reply; check its log");
        if (count < 0 && errno != EAGAIN && errno != EINTR) {
            throw Failure(kPeerLost, mPath + ": connection lost: " + std::strerror(errno));
        }
    }
}

std::string WireConnection::ReceiveAll(Milliseconds quiet) {
    std::string all;
    while (Wait(POLLIN, Clock::now() + quiet)) {
        char bytes[65536];
        const ssize_t count = recv(mSocket.Get(), bytes, sizeof(bytes), 0);
        if (count > 0) all.append(bytes, static_cast<size_t>(count));
        if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) break;
    }
    return all;
}

}  // namespace hbbtv
