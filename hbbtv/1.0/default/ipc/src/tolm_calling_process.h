// The process that a thread serves, so that no thread waits for the platform on behalf of a process that has died.
#pragma once

#include <sys/types.h>

#include <memory>

namespace tolm {

// Returns the id of the process whose call this thread serves. This process's own id, and 0, stand for no caller.
using FindCallingPid = pid_t (*)();

// Sets how callers are found. Until then, threads have no caller.
void SetFindCallingPid(FindCallingPid find);

// Returns the id of the process whose call this thread serves, or 0 without a caller.
pid_t CallingPid();

// As above, but may also return the id of this process.
pid_t ServedPid();

// Thread-safe.
class CallingProcess {
  public:
    // Returns the process with this id, which exists or has died by now. All its callers share one object, and one
    // descriptor.
    static std::shared_ptr<const CallingProcess> Of(pid_t pid);

    explicit CallingProcess(pid_t pid);
    ~CallingProcess();
    CallingProcess(const CallingProcess&) = delete;
    CallingProcess& operator=(const CallingProcess&) = delete;

    bool HasDied() const;

  private:
    const pid_t mPid;
    const int mFd;  // refers to the process, even if its id is used again; -1 on a kernel without such descriptors
};

}  // namespace tolm
