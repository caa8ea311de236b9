// The thread pool of this process for generated code.
#pragma once

namespace android::hardware {

class ProcessState {
  public:
    static ProcessState* self();

    // Starts the pool: from now on, its threads are started as needed.
    void startThreadPool();
};

}  // namespace android::hardware
