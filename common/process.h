// Other processes, as /proc describes them.
#pragma once

#include <sys/types.h>

#include <string>

namespace hbbtv {

// Returns the name of the process's program, "hbbtv-sim", or "" if it cannot be read, as that of another user.
std::string ProgramOf(pid_t pid);

// Returns "hbbtv-sim (4711)", or "process (4711)" if its program cannot be read, as that of another user.
std::string DescribeProcess(pid_t pid);

// Returns whether the process is stopped, by SIGSTOP or a debugger.
bool IsStopped(pid_t pid);

}  // namespace hbbtv
