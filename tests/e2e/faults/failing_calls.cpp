#include "failing_calls.h"

#include <dlfcn.h>
#include <poll.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <string>

namespace {

using hbbtv::test::FailingCall;
using hbbtv::test::Function;

FailingCall* Control() {
    static FailingCall* const control =
        hbbtv::test::MapFailingCall((std::string(getenv("TMPDIR")) + "/" + hbbtv::test::kFailingCallsFile).c_str());
    return control;
}

// Returns whether this call is the one that fails.
bool Fails(Function function) {
    // Mapping the file is a call as well.
    static thread_local bool inside = false;
    if (inside) return false;
    inside = true;
    FailingCall* const control = Control();
    inside = false;
    if (control == nullptr || control->function != function) return false;
    int left = control->left;
    while (left > 0 && !control->left.compare_exchange_weak(left, left - 1)) {
    }
    return left == 1;
}

// The same for a connection that is gone, which its peer notices as well.
bool Breaks(Function function, int fd) {
    if (!Fails(function)) return false;
    shutdown(fd, SHUT_RDWR);
    errno = function == Function::Send ? EPIPE : ECONNRESET;
    return true;
}

}  // namespace

// A function that fails with an error, or else is that of the C library.
#define FAILING(kind, error, type, name, parameters, ...)                                       \
    extern "C" type name parameters {                                                           \
        if (Fails(Function::kind)) {                                                            \
            errno = error;                                                                      \
            return -1;                                                                          \
        }                                                                                       \
        static const auto next = reinterpret_cast<type(*) parameters>(dlsym(RTLD_NEXT, #name)); \
        return next(__VA_ARGS__);                                                               \
    }

// A function of a descriptor whose connection breaks.
#define BREAKING(kind, type, name, parameters, ...)                                             \
    extern "C" type name parameters {                                                           \
        if (Breaks(Function::kind, fd)) return -1;                                              \
        static const auto next = reinterpret_cast<type(*) parameters>(dlsym(RTLD_NEXT, #name)); \
        return next(__VA_ARGS__);                                                               \
    }

FAILING(Connect, ECONNREFUSED, int, connect, (int fd, const sockaddr* address, socklen_t size), fd, address, size)
FAILING(Accept, EMFILE, int, accept, (int fd, sockaddr* address, socklen_t* size), fd, address, size)
FAILING(Accept, EMFILE, int, accept4, (int fd, sockaddr* address, socklen_t* size, int flags), fd, address, size, flags)
FAILING(Socket, EMFILE, int, socket, (int domain, int type, int protocol) noexcept, domain, type, protocol)
FAILING(Bind, EADDRINUSE, int, bind, (int fd, const sockaddr* address, socklen_t size) noexcept, fd, address, size)
BREAKING(Send, ssize_t, send, (int fd, const void* data, size_t size, int flags), fd, data, size, flags)
BREAKING(Send, ssize_t, sendmsg, (int fd, const msghdr* message, int flags), fd, message, flags)
BREAKING(Recv, ssize_t, recv, (int fd, void* data, size_t size, int flags), fd, data, size, flags)
BREAKING(Recv, ssize_t, recvmsg, (int fd, msghdr* message, int flags), fd, message, flags)
FAILING(Poll, ENOMEM, int, poll, (pollfd * entries, nfds_t count, int limit), entries, count, limit)
FAILING(Poll, ENOMEM, int, epoll_wait, (int fd, epoll_event* events, int most, int limit), fd, events, most, limit)
FAILING(Write, ENOSPC, ssize_t, write, (int fd, const void* data, size_t size), fd, data, size)
FAILING(Write, ENOSPC, ssize_t, writev, (int fd, const iovec* data, int count), fd, data, count)

BREAKING(Send, ssize_t, sendto,
         (int fd, const void* data, size_t size, int flags, const sockaddr* to, socklen_t toSize), fd, data, size,
         flags, to, toSize)
BREAKING(Recv, ssize_t, recvfrom, (int fd, void* data, size_t size, int flags, sockaddr* from, socklen_t* fromSize), fd,
         data, size, flags, from, fromSize)

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                              void* argument) noexcept {
    if (Fails(Function::Clone)) return EAGAIN;
    static const auto next = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return next(thread, attributes, body, argument);
}

// A mode is passed only with some flags; reading one that is not there is harmless here.
extern "C" int openat(int directory, const char* path, int flags, ...) {
    if (Fails(Function::Open)) {
        errno = EMFILE;
        return -1;
    }
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    static const auto next = reinterpret_cast<decltype(&openat)>(dlsym(RTLD_NEXT, "openat"));
    return next(directory, path, flags, mode);
}

extern "C" int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return openat(AT_FDCWD, path, flags, mode);
}
