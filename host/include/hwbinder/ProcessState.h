// The thread pool of this process as generated code knows it.
#pragma once

namespace android {
namespace hardware {

class ProcessState {
  public:
    static ProcessState* self();

    // From now on the pool's threads are started as there is work for them.
    void startThreadPool();
};

}  // namespace hardware
}  // namespace android
