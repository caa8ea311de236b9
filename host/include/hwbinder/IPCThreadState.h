// The call that a thread of this process is serving.
#pragma once

#include <sys/types.h>

namespace android::hardware {

class IPCThreadState {
  public:
    // Returns the state of this thread.
    static IPCThreadState* self();

    // Returns the id of the process whose call this thread is serving, 0 for a one-way call, or the id of this process
    // if the thread is not serving a call.
    pid_t getCallingPid() const;
};

}  // namespace android::hardware
