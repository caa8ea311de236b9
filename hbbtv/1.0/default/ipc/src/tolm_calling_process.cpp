#include "ipc/src/tolm_calling_process.h"

#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <map>
#include <mutex>

namespace tolm {

namespace {

std::atomic<FindCallingPid> gFind{nullptr};

// Not every C library has a function for it. The descriptor is closed on exec.
int OpenProcess(pid_t pid) {
    return static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
}

}  // namespace

void SetFindCallingPid(FindCallingPid find) {
    gFind = find;
}

pid_t ServedPid() {
    const FindCallingPid find = gFind;
    return find != nullptr ? find() : 0;
}

pid_t CallingPid() {
    const pid_t pid = ServedPid();
    return pid != getpid() ? pid : 0;
}

std::shared_ptr<const CallingProcess> CallingProcess::Of(pid_t pid) {
    struct Known {
        std::mutex mutex;
        std::map<pid_t, std::weak_ptr<const CallingProcess>> processes;  // guarded by mutex
    };
    static Known* const known = new Known;  // never destroyed: threads run on while the process exits
    std::lock_guard<std::mutex> lock(known->mutex);
    for (auto entry = known->processes.begin(); entry != known->processes.end();) {
        entry = entry->second.expired() ? known->processes.erase(entry) : std::next(entry);
    }
    std::weak_ptr<const CallingProcess>& entry = known->processes[pid];
    std::shared_ptr<const CallingProcess> process = entry.lock();
    // One that has died may have left its id to another.
    if (process == nullptr || process->HasDied()) entry = process = std::make_shared<CallingProcess>(pid);
    return process;
}

CallingProcess::CallingProcess(pid_t pid) : mPid(pid), mFd(OpenProcess(pid)) {}

CallingProcess::~CallingProcess() {
    if (mFd >= 0) close(mFd);
}

bool CallingProcess::HasDied() const {
    if (mFd < 0) return kill(mPid, 0) != 0 && errno == ESRCH;  // another error: it exists and must not be signalled
    pollfd ended{mFd, POLLIN, 0};
    return poll(&ended, 1, 0) == 1;
}

}  // namespace tolm
