#include "failing_calls.h"

#include <dlfcn.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <ucontext.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
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

FAILING(Connect, ECONNREFUSED, int, connect, (int fd, const sockaddr* address, socklen_t size), fd, address, size)
FAILING(Accept, EMFILE, int, accept, (int fd, sockaddr* address, socklen_t* size), fd, address, size)
FAILING(Accept, EMFILE, int, accept4, (int fd, sockaddr* address, socklen_t* size, int flags), fd, address, size, flags)
FAILING(Socket, EMFILE, int, socket, (int domain, int type, int protocol) noexcept, domain, type, protocol)
FAILING(Bind, EADDRINUSE, int, bind, (int fd, const sockaddr* address, socklen_t size) noexcept, fd, address, size)
FAILING(Send, ENOBUFS, ssize_t, send, (int fd, const void* data, size_t size, int flags), fd, data, size, flags)
FAILING(Send, ENOBUFS, ssize_t, sendmsg, (int fd, const msghdr* message, int flags), fd, message, flags)
FAILING(Recv, ENOMEM, ssize_t, recv, (int fd, void* data, size_t size, int flags), fd, data, size, flags)
FAILING(Recv, ENOMEM, ssize_t, recvmsg, (int fd, msghdr* message, int flags), fd, message, flags)
FAILING(Poll, ENOMEM, int, poll, (pollfd * entries, nfds_t count, int limit), entries, count, limit)
FAILING(Poll, ENOMEM, int, epoll_wait, (int fd, epoll_event* events, int most, int limit), fd, events, most, limit)
FAILING(Write, ENOSPC, ssize_t, write, (int fd, const void* data, size_t size), fd, data, size)
FAILING(Write, ENOSPC, ssize_t, writev, (int fd, const iovec* data, int count), fd, data, count)

FAILING(Send, ENOBUFS, ssize_t, sendto,
        (int fd, const void* data, size_t size, int flags, const sockaddr* to, socklen_t toSize), fd, data, size, flags,
        to, toSize)
FAILING(Recv, ENOMEM, ssize_t, recvfrom,
        (int fd, void* data, size_t size, int flags, sockaddr* from, socklen_t* fromSize), fd, data, size, flags, from,
        fromSize)

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

// The C library maps memory for heaps and stacks by a system call of its own, which no preloaded function replaces. So
// a filter makes the kernel send SIGSYS instead, and the handler makes the call, marked by a descriptor that the kernel
// ignores and the filter lets pass.
namespace {

constexpr int kMarked = -2;

#if defined(__x86_64__)
constexpr unsigned kArchitecture = AUDIT_ARCH_X86_64;
long long& Argument(ucontext_t& context, int number) {
    constexpr int kRegisters[] = {REG_RDI, REG_RSI, REG_RDX, REG_R10, REG_R8, REG_R9};
    return context.uc_mcontext.gregs[kRegisters[number]];
}
long long& Result(ucontext_t& context) {
    return context.uc_mcontext.gregs[REG_RAX];
}
#elif defined(__aarch64__)
constexpr unsigned kArchitecture = AUDIT_ARCH_AARCH64;
unsigned long long& Argument(ucontext_t& context, int number) {
    return context.uc_mcontext.regs[number];
}
unsigned long long& Result(ucontext_t& context) {
    return context.uc_mcontext.regs[0];
}
#endif

void Map(int, siginfo_t*, void* data) {
    auto& context = *static_cast<ucontext_t*>(data);
    const int savedError = errno;
    if (Fails(Function::Mmap)) {
        Result(context) = -ENOMEM;
    } else {
        const long address = syscall(SYS_mmap, Argument(context, 0), Argument(context, 1), Argument(context, 2),
                                     Argument(context, 3), kMarked, Argument(context, 5));
        Result(context) = address == -1 ? -errno : address;
    }
    errno = savedError;
}

[[gnu::constructor]] void TrapMaps() {
    Fails(Function::None);  // maps the file, which the handler cannot
    struct sigaction action = {};
    action.sa_sigaction = Map;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSYS, &action, nullptr);
    sock_filter code[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, arch)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, kArchitecture, 0, 5),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_mmap, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[4])),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0xffffffff, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program = {sizeof(code) / sizeof(*code), code};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
        perror("cannot make mmap fail");
        abort();
    }
}

}  // namespace

// Without SIGSYS, which must not be blocked when it is sent.
extern "C" int pthread_sigmask(int how, const sigset_t* signals, sigset_t* before) noexcept {
    static const auto next = reinterpret_cast<decltype(&pthread_sigmask)>(dlsym(RTLD_NEXT, "pthread_sigmask"));
    if (signals == nullptr || how == SIG_UNBLOCK) return next(how, signals, before);
    sigset_t others = *signals;
    sigdelset(&others, SIGSYS);
    return next(how, &others, before);
}
