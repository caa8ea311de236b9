#include "traffic/relay/control.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "common/failure.h"
#include "common/local_socket.h"

namespace hbbtv::traffic {

// The claim to the directory shows that a file there is an old one.
Control::Control(asio::io_context& context, const std::string& path, std::function<std::string()> answer)
    : mPath(path), mAnswer(std::move(answer)), mListener(context) {
    unlink(path.c_str());
    const int fd = ListenOn(path);
    if (fd < 0) throw Failure(kUnavailable, "cannot listen on " + path + ": " + std::strerror(errno));
    mListener.assign(fd);
    chmod(path.c_str(), 0700);
    Await();
}

Control::~Control() {
    unlink(mPath.c_str());
}

// The document is shorter than what a socket takes at once, so a program that does not read holds nothing up.
void Control::Await() {
    mListener.async_wait(asio::posix::descriptor_base::wait_read, [this](const asio::error_code& error) {
        if (error) return;
        const Descriptor fd(accept4(mListener.native_handle(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (fd.Get() >= 0) {
            const std::string document = mAnswer() + "\n";
            (void)!send(fd.Get(), document.data(), document.size(), MSG_NOSIGNAL);
        }
        Await();
    });
}

}  // namespace hbbtv::traffic
