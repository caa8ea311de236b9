#include "traffic/relay/link.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <asio/buffer.hpp>
#include <asio/error.hpp>
#include <cerrno>
#include <chrono>
#include <utility>

namespace hbbtv::traffic {

namespace {

constexpr std::chrono::milliseconds kSlowStep{50};  // between two parts of a message that is passed on slowly

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

Link::Link(asio::io_context& context, int caller, int server, const RelayedConnection& about, Rules& rules,
           Recorder& recorder, std::function<void(uint64_t)> onClosed)
    : mCaller(context, asio::local::stream_protocol(), caller),
      mServer(context, asio::local::stream_protocol(), server),
      mAbout(about),
      mShaping(rules, about),
      mRecorder(recorder),
      mOnClosed(std::move(onClosed)),
      mWays{Way(context), Way(context)} {}

Link::Socket& Link::Sender(Direction direction) {
    return direction == Direction::kToServer ? mCaller : mServer;
}

Link::Socket& Link::Receiver(Direction direction) {
    return Sender(Opposite(direction));
}

void Link::Start() {
    AwaitBytes(Direction::kToServer);
    AwaitBytes(Direction::kToCaller);
}

// Three system calls pass a message on: to wait, to receive and to send. A wait for the socket alone would be a fourth.
void Link::AwaitBytes(Direction direction) {
    Way& way = Of(direction);
    if (std::exchange(way.reading, true)) return;
    Sender(direction).async_receive(
        asio::buffer(way.chunk), [self = shared_from_this(), direction](const asio::error_code& error, size_t count) {
            self->Of(direction).reading = false;
            if (!self->mClosed) self->Receive(direction, error, count);
        });
}

void Link::Receive(Direction direction, const asio::error_code& error, size_t count) {
    Way& way = Of(direction);
    if (error) {
        way.ended = true;
        way.gone = error != asio::error::eof || IsHungUp(Sender(direction).native_handle());
    } else {
        Take(direction, way.chunk.data(), count);
    }
    Continue(direction);
}

// Without rules, that is all: the bytes are passed on. The rest of a message that has begun without rules is as well.
void Link::Take(Direction direction, const char* bytes, size_t count) {
    Way& way = Of(direction);
    size_t at = 0;
    if (!mShaping.Collects(direction)) {
        at = count;
    } else if (!way.walk.AtBegin()) {
        FrameWalk walk = way.walk;
        at = walk.Step(bytes, count);
        while (at < count && !(walk.InPayload() && walk.Left() == 0)) at += walk.Step(bytes + at, count - at);
    }
    if (at > 0) PassOn(direction, bytes, at);
    if (at < count) mShaping.Collect(direction, bytes + at, count - at);
}

void Link::PassOn(Direction direction, const char* bytes, size_t count) {
    const TimeStamp arrived;
    Send(direction, bytes, count);
    const size_t begin = BeginIn(direction, bytes, count);
    mRecorder.Bytes(mAbout.number, direction, std::string(bytes, count), begin, arrived, "");
}

// Returns where the first message begins that begins in these bytes, or npos.
size_t Link::BeginIn(Direction direction, const char* bytes, size_t count) {
    Way& way = Of(direction);
    size_t begin = std::string::npos;
    for (size_t at = 0; at < count;) {
        if (way.walk.AtBegin() && begin == std::string::npos) begin = at;
        at += way.walk.Step(bytes + at, count - at);
        if (way.walk.InPayload() && way.walk.Left() == 0 && !way.walk.Damaged()) {
            mShaping.PassedOn(direction, way.walk.Header());
            way.walk.Begin();
        }
    }
    return begin;
}

void Link::Send(Direction direction, const char* bytes, size_t count) {
    Way& way = Of(direction);
    if (way.refused) return;
    ssize_t sent = 0;
    if (way.waiting.empty() && way.rate == 0) sent = SendTo(Receiver(direction).native_handle(), bytes, count);
    if (sent < 0) return Refuse(direction);
    way.waiting.append(bytes + sent, count - static_cast<size_t>(sent));
    if (!way.waiting.empty()) AwaitRoom(direction);
}

// The receiver takes no more, so the sender must not send more. What the receiver sends is still passed on.
void Link::Refuse(Direction direction) {
    Way& way = Of(direction);
    way.refused = true;
    way.waiting.clear();
    way.sent = 0;
    shutdown(Sender(direction).native_handle(), SHUT_RD);
}

void Link::AwaitRoom(Direction direction) {
    if (std::exchange(Of(direction).writing, true)) return;
    Receiver(direction).async_wait(asio::socket_base::wait_write,
                                   [self = shared_from_this(), direction](const asio::error_code& error) {
                                       self->Of(direction).writing = false;
                                       if (!error && !self->mClosed) self->Flush(direction);
                                   });
}

void Link::AwaitTime(Direction direction, std::chrono::milliseconds time, void (Link::*then)(Direction)) {
    asio::steady_timer& timer = Of(direction).timer;
    timer.expires_after(time);
    timer.async_wait([self = shared_from_this(), direction, then](const asio::error_code& error) {
        if (!error && !self->mClosed) (*self.*then)(direction);
    });
}

void Link::Flush(Direction direction) {
    Way& way = Of(direction);
    size_t count = way.waiting.size() - way.sent;
    if (way.rate != 0) {
        const uint64_t steps = std::chrono::seconds(1) / kSlowStep;
        count = std::min<uint64_t>(count, std::max<uint64_t>(way.rate / steps, 1));
    }
    const ssize_t sent = SendTo(Receiver(direction).native_handle(), way.waiting.data() + way.sent, count);
    if (sent < 0) Refuse(direction);
    if (!way.refused) way.sent += static_cast<size_t>(sent);
    if (!way.refused && way.sent < way.waiting.size()) {
        return way.rate == 0 ? AwaitRoom(direction) : AwaitTime(direction, kSlowStep, &Link::AwaitRoom);
    }
    way.waiting.clear();
    way.sent = 0;
    way.rate = 0;
    Continue(direction);
}

// Does what is next: a message that was collected, the end, or the next bytes.
void Link::Continue(Direction direction) {
    Way& way = Of(direction);
    while (!mClosed && !way.held && way.waiting.empty()) {
        if (way.closing) return Close("by a rule");
        const std::optional<Shaping::Step> step = mShaping.Next(direction);
        if (step) {
            Follow(direction, *step);
            continue;
        }
        const std::string rest = mShaping.Rest(direction, way.ended);
        if (rest.empty()) return way.ended ? Finish(direction) : AwaitBytes(direction);
        PassOn(direction, rest.data(), rest.size());
    }
}

void Link::Follow(Direction direction, const Shaping::Step& step) {
    mRecorder.Bytes(mAbout.number, direction, step.message, 0, TimeStamp(), step.verdict.applied);
    mVerdicts[static_cast<size_t>(direction)] = step.verdict;
    if (step.verdict.hold) {
        Of(direction).held = true;
        mShaping.Of().WhenLetGo([weak = weak_from_this(), direction] {
            const auto self = weak.lock();
            if (self && !self->mClosed) self->Release(direction);
        });
        return;
    }
    if (step.verdict.delay.count() == 0) return Deliver(direction);
    Of(direction).held = true;
    AwaitTime(direction, step.verdict.delay, &Link::Release);
}

void Link::Release(Direction direction) {
    Of(direction).held = false;
    Deliver(direction);
    Continue(direction);
}

void Link::Deliver(Direction direction) {
    const Verdict verdict = std::exchange(mVerdicts[static_cast<size_t>(direction)], {});
    Of(direction).rate = verdict.rate;
    Of(direction).closing = verdict.close;
    Send(direction, verdict.forward.data(), verdict.forward.size());
    if (verdict.answer.empty()) return;
    mShaping.Answer(verdict.answer);
    Continue(Opposite(direction));
}

// All that the sender has sent has been passed on.
void Link::Finish(Direction direction) {
    const bool fromLibrary = (direction == Direction::kToServer) != IsOfLibrary(mAbout.socket);
    const Way& opposite = Of(Opposite(direction));
    if (Of(direction).gone || (opposite.ended && opposite.waiting.empty() && !opposite.held)) {
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
    for (Way& way : mWays) way.timer.cancel();
    mRecorder.Closed(mAbout.number, how);
    mOnClosed(mAbout.number);
}

}  // namespace hbbtv::traffic
