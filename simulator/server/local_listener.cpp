#include "server/local_listener.h"

#include <sys/stat.h>
#include <unistd.h>

#include <asio/local/stream_protocol.hpp>
#include <cerrno>
#include <cstring>

#include "common/local_socket.h"
#include "core/error.h"
#include "core/event_loop.h"
#include "core/journal.h"

namespace hbbtv::sim {

namespace {

// For example when no descriptor is free; waiting peers are accepted later.
constexpr std::chrono::milliseconds kPauseAfterError{100};

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
    throw Fatal(kCannotServe, "cannot serve " + path + ": " + reason);
}

void ClearPath(const std::string& path) {
    struct stat file {};
    if (lstat(path.c_str(), &file) != 0) return;  // not there, or not accessible: bind reports the error
    if (!S_ISSOCK(file.st_mode)) Fail(path, "the file is not a socket");
    const Descriptor probe(ConnectTo(path));
    if (probe.Get() >= 0 || errno == EAGAIN) {
        Fail(path, "another process serves it; end it or choose another directory with --directory");
    }
    if (unlink(path.c_str()) != 0 && errno != ENOENT) Fail(path, std::strerror(errno));
}

}  // namespace

struct LocalListener::Acceptor {
    Acceptor(EventLoop& loop, int fd) : socket(loop.Context(), asio::local::stream_protocol(), fd), pause(loop) {}

    asio::local::stream_protocol::acceptor socket;
    Timer pause;
    struct stat file {};  // which file is ours
};

LocalListener::LocalListener(EventLoop& loop, const std::string& path, std::function<void(int)> onAccept)
    : mPath(path), mOnAccept(std::move(onAccept)) {
    if (path.size() > kLongestSocketPath) {
        Fail(path, "the path is longer than " + std::to_string(kLongestSocketPath) + " characters");
    }
    ClearPath(path);
    const int fd = ListenOn(path);
    if (fd < 0) Fail(path, std::strerror(errno));
    mAcceptor = std::make_unique<Acceptor>(loop, fd);
    lstat(path.c_str(), &mAcceptor->file);
    AcceptNext();
}

LocalListener::~LocalListener() {
    struct stat file {};
    const bool there = lstat(mPath.c_str(), &file) == 0;
    const struct stat& own = mAcceptor->file;
    if (there && file.st_ino == own.st_ino && file.st_dev == own.st_dev) unlink(mPath.c_str());
}

void LocalListener::AcceptNext() {
    mAcceptor->socket.async_accept(
        [this](const asio::error_code& error, asio::local::stream_protocol::socket connection) {
            if (error == asio::error::operation_aborted) return;
            if (error) {
                Journal::Log("cannot accept on " + mPath + ": " + error.message());
                mAcceptor->pause.Start(kPauseAfterError, [this] { AcceptNext(); });
                return;
            }
            mOnAccept(connection.release());
            AcceptNext();
        });
}

}  // namespace hbbtv::sim
