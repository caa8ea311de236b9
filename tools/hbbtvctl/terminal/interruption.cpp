// See interruption.h.
#include "terminal/interruption.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace hbbtv::ctl {

namespace {

int Checked(int fd) {
    if (fd < 0) throw std::system_error(errno, std::generic_category(), "waiting for signals");
    return fd;
}

sigset_t Signals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

}  // namespace

Interruption::Interruption() {
    const sigset_t signals = Signals();
    mSignals = Checked(signalfd(-1, &signals, SFD_CLOEXEC));
    mWake = Checked(eventfd(0, EFD_CLOEXEC));
}

Interruption::~Interruption() {
    close(mSignals);
    close(mWake);
}

void Interruption::Wake() {
    eventfd_write(mWake, 1);
}

Interruption::Cause Interruption::Wait(std::optional<std::chrono::milliseconds> limit) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + limit.value_or(std::chrono::milliseconds(0));
    while (true) {
        pollfd entries[] = {{mWake, POLLIN, 0}, {mSignals, POLLIN, 0}};
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        const int ready = poll(entries, 2, !limit ? -1 : left > 0 ? static_cast<int>(left) : 0);
        if (ready > 0) return entries[0].revents != 0 ? Cause::Woken : Cause::Signal;
        if (ready == 0) return Cause::Deadline;
        if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "waiting");
    }
}

}  // namespace hbbtv::ctl
