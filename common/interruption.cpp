#include "common/interruption.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace hbbtv {

namespace {

using Clock = std::chrono::steady_clock;

int gSignals = -1;  // of the one Interruption

int Checked(int fd) {
    if (fd < 0) throw std::system_error(errno, std::generic_category(), "waiting for signals");
    return fd;
}

int OpenSignals(std::initializer_list<int> more) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    for (const int signal : more) sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return Checked(signalfd(-1, &signals, SFD_CLOEXEC));
}

// Consumes the signal, so that it does not end the next wait as well.
void TakeSignal() {
    signalfd_siginfo signal;
    while (read(gSignals, &signal, sizeof(signal)) < 0 && errno == EINTR) {
    }
}

// Calls poll() with a deadline. Returns whether anything is ready.
bool Poll(pollfd* entries, nfds_t count, std::optional<Milliseconds> limit) {
    const auto deadline = Clock::now() + limit.value_or(Milliseconds(0));
    while (true) {
        const auto left = std::chrono::ceil<Milliseconds>(deadline - Clock::now()).count();
        const int ready = poll(entries, count, !limit ? -1 : left > 0 ? static_cast<int>(left) : 0);
        if (ready >= 0) return ready > 0;
        if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "waiting");
    }
}

}  // namespace

Interruption::Interruption(std::initializer_list<int> more) : mWake(Checked(eventfd(0, EFD_CLOEXEC))) {
    gSignals = OpenSignals(more);
}

Interruption::~Interruption() {
    close(gSignals);
    gSignals = -1;
    close(mWake);
}

void Interruption::Wake() {
    eventfd_write(mWake, 1);
}

Interruption::Cause Interruption::Wait(std::optional<Milliseconds> limit) {
    // With no events requested, the entry of the output only reports that its reader has gone.
    pollfd entries[] = {{mWake, POLLIN, 0}, {gSignals, POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
    if (!Poll(entries, 3, limit)) return Cause::Deadline;
    if (entries[0].revents != 0) return Cause::Woken;
    if (entries[1].revents == 0) return Cause::NoReader;
    TakeSignal();
    return Cause::Signal;
}

bool WaitUntilReadable(int fd, Milliseconds limit) {
    pollfd entries[] = {{fd, POLLIN, 0}, {gSignals, POLLIN, 0}};
    if (!Poll(entries, 2, limit)) return false;
    if (entries[0].revents != 0) return true;
    TakeSignal();
    throw Interrupted();
}

}  // namespace hbbtv
