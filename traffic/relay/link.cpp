#include "traffic/relay/link.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <utility>

namespace hbbtv::traffic {

namespace {

constexpr size_t kChunk = 65536;

// Returns whether the other end of a socket has been closed, not only half.
bool IsHungUp(int fd) {
    pollfd entry{fd, 0, 0};
    return poll(&entry, 1, 0) == 1 && (entry.revents & (POLLHUP | POLLERR)) != 0;
}

// Returns the bytes that were written, or -1 if the receiver takes no more.
ssize_t SendTo(int fd, const char* bytes, size_t count) {
    size_t sent = 0;
    while (sent < count) {
        const ssize_t now = send(fd, bytes + sent, count - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (now >= 0) {
            sent += static_cast<size_t>(now);
        } else if (errno == EAGAIN) {
            break;
        } else if (errno != EINTR) {
            return -1;
        }
    }
    return static_cast<ssize_t>(sent);
}

Direction Opposite(Direction direction) {
    return direction == Direction::kToServer ? Direction::kToCaller : Direction::kToServer;
}

}  // namespace

Link::Link(asio::io_context& context, int caller, int server, uint64_t number, bool ofLibrary, Recorder& recorder,
           std::function<void(uint64_t)> onClosed)
    : mCaller(context, caller),
      mServer(context, server),
      mNumber(number),
      mOfLibrary(ofLibrary),
      mRecorder(recorder),
      mOnClosed(std::move(onClosed)) {}

asio::posix::stream_descriptor& Link::Sender(Direction direction) {
    return direction == Direction::kToServer ? mCaller : mServer;
}

asio::posix::stream_descriptor& Link::Receiver(Direction direction) {
    return Sender(Opposite(direction));
}

void Link::Start() {
    AwaitBytes(Direction::kToServer);
    AwaitBytes(Direction::kToCaller);
}

void Link::AwaitBytes(Direction direction) {
    Sender(direction).async_wait(asio::posix::descriptor_base::wait_read,
                                 [self = shared_from_this(), direction](const asio::error_code& error) {
                                     if (!error && !self->mClosed) self->Receive(direction);
                                 });
}

void Link::Receive(Direction direction) {
    static thread_local std::array<char, kChunk> chunk;
    const ssize_t count = recv(Sender(direction).native_handle(), chunk.data(), chunk.size(), MSG_DONTWAIT);
    if (count > 0) return PassOn(direction, chunk.data(), static_cast<size_t>(count));
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return AwaitBytes(direction);
    Of(direction).gone = count < 0 || IsHungUp(Sender(direction).native_handle());
    End(direction);
}

void Link::PassOn(Direction direction, const char* bytes, size_t count) {
    Way& way = Of(direction);
    const ssize_t sent = way.refused ? -1 : SendTo(Receiver(direction).native_handle(), bytes, count);
    const size_t begin = BeginIn(way, bytes, count);
    mRecorder.Bytes(mNumber, direction, std::string(bytes, count), begin, "");
    if (sent < 0) {
        Refuse(direction);
    } else if (static_cast<size_t>(sent) < count) {
        way.waiting.assign(bytes + sent, count - static_cast<size_t>(sent));
        way.sent = 0;
        return AwaitRoom(direction);
    }
    AwaitBytes(direction);
}

// Returns where the first message begins that begins in these bytes, or npos.
size_t Link::BeginIn(Way& way, const char* bytes, size_t count) {
    size_t begin = std::string::npos;
    for (size_t at = 0; at < count;) {
        if (way.walk.AtBegin() && begin == std::string::npos) begin = at;
        at += way.walk.Step(bytes + at, count - at);
        if (way.walk.InPayload() && way.walk.Left() == 0 && !way.walk.Damaged()) way.walk.Begin();
    }
    return begin;
}

// The receiver takes no more, so the sender must not send more. What the receiver sends is still passed on.
void Link::Refuse(Direction direction) {
    Of(direction).refused = true;
    shutdown(Sender(direction).native_handle(), SHUT_RD);
}

void Link::AwaitRoom(Direction direction) {
    Receiver(direction).async_wait(asio::posix::descriptor_base::wait_write,
                                   [self = shared_from_this(), direction](const asio::error_code& error) {
                                       if (!error && !self->mClosed) self->Flush(direction);
                                   });
}

void Link::Flush(Direction direction) {
    Way& way = Of(direction);
    const ssize_t sent =
        SendTo(Receiver(direction).native_handle(), way.waiting.data() + way.sent, way.waiting.size() - way.sent);
    if (sent < 0) Refuse(direction);
    if (!way.refused) way.sent += static_cast<size_t>(sent);
    if (!way.refused && way.sent < way.waiting.size()) return AwaitRoom(direction);
    way.waiting.clear();
    way.sent = 0;
    if (way.ended) return Finish(direction);
    AwaitBytes(direction);
}

void Link::End(Direction direction) {
    Way& way = Of(direction);
    way.ended = true;
    if (way.waiting.empty()) Finish(direction);
}

// All that the sender has sent has been passed on.
void Link::Finish(Direction direction) {
    const bool fromLibrary = (direction == Direction::kToServer) != mOfLibrary;
    const Way& opposite = Of(Opposite(direction));
    if (Of(direction).gone || (opposite.ended && opposite.waiting.empty())) {
        return Close(fromLibrary ? "by the library" : "by the platform");
    }
    shutdown(Receiver(direction).native_handle(), SHUT_WR);
}

bool Link::Busy() const {
    return !mWays[0].waiting.empty() || !mWays[1].waiting.empty();
}

void Link::Close(const std::string& how) {
    if (std::exchange(mClosed, true)) return;
    asio::error_code ignored;
    mCaller.close(ignored);
    mServer.close(ignored);
    mRecorder.Closed(mNumber, how);
    mOnClosed(mNumber);
}

}  // namespace hbbtv::traffic
