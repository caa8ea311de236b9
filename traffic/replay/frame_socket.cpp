#include "traffic/replay/frame_socket.h"

#include <unistd.h>

#include <asio/write.hpp>
#include <cerrno>
#include <cstring>

#include "common/failure.h"
#include "common/local_socket.h"

namespace hbbtv::traffic {

namespace {

using Protocol = asio::local::stream_protocol;

int Listen(const std::string& path) {
    struct stat file {};
    if (lstat(path.c_str(), &file) == 0) {
        const Descriptor probe(S_ISSOCK(file.st_mode) ? ConnectTo(path) : -1);
        if (probe.Get() >= 0 || errno == EAGAIN) {
            throw Failure(kUsage, path + ": another process serves it; end it, or choose another --directory");
        }
        if (!S_ISSOCK(file.st_mode)) throw Failure(kUsage, path + ": the file is not a socket");
        unlink(path.c_str());
    }
    const int fd = ListenOn(path);
    if (fd < 0) throw Failure(kUsage, "cannot serve " + path + ": " + std::strerror(errno));
    return fd;
}

}  // namespace

FrameSocket::FrameSocket(asio::io_context& context, int fd) : mSocket(context, Protocol(), fd) {}

void FrameSocket::Start(Handler handler) {
    mHandler = std::move(handler);
    Read();
}

void FrameSocket::Read() {
    mSocket.async_read_some(asio::buffer(mChunk),
                            [self = shared_from_this()](const asio::error_code& error, size_t count) {
                                if (self->mClosing) return;
                                if (error) return self->Lost();
                                self->mReader.Take(self->mChunk.data(), count);
                                while (const std::optional<Frame> frame = self->mReader.Next()) {
                                    self->mHandler.message(*frame);
                                    if (self->mClosing) return;
                                }
                                if (self->mReader.Oversized()) return self->Lost();
                                self->Read();
                            });
}

void FrameSocket::Send(const std::string& bytes) {
    mWaiting += bytes;
    Write();
}

void FrameSocket::Write() {
    if (!mWriting.empty()) return;
    if (mWaiting.empty()) {
        if (mClosing) mSocket.close();
        return;
    }
    mWriting.swap(mWaiting);
    asio::async_write(mSocket, asio::buffer(mWriting),
                      [self = shared_from_this()](const asio::error_code& error, size_t) {
                          self->mWriting.clear();
                          if (error) return self->Lost();
                          self->Write();
                      });
}

void FrameSocket::Close() {
    mClosing = true;
    Write();
}

void FrameSocket::Lost() {
    if (mClosing) return;
    mClosing = true;
    mSocket.close();
    mHandler.closed();
}

FrameListener::FrameListener(asio::io_context& context, const std::string& path,
                             std::function<void(std::shared_ptr<FrameSocket>)> accepted)
    : mContext(context), mPath(path), mAccepted(std::move(accepted)), mAcceptor(context, Protocol(), Listen(path)) {
    lstat(path.c_str(), &mFile);
    Accept();
}

FrameListener::~FrameListener() {
    struct stat file {};
    const bool there = lstat(mPath.c_str(), &file) == 0;
    if (there && file.st_ino == mFile.st_ino && file.st_dev == mFile.st_dev) unlink(mPath.c_str());
}

void FrameListener::Accept() {
    mAcceptor.async_accept([this](const asio::error_code& error, Protocol::socket connection) {
        if (error == asio::error::operation_aborted) return;
        if (!error) mAccepted(std::make_shared<FrameSocket>(mContext, connection.release()));
        Accept();
    });
}

}  // namespace hbbtv::traffic
