// The plain function that receives an adaptor's events, with its context. Thread-safe.
#pragma once

#include <mutex>

namespace tolm {

template <typename Function>
class TolmCallbackSlot {
  public:
    struct Registration {
        Function function = nullptr;
        const void* context = nullptr;
    };

    void Set(Function function, const void* context) {
        std::lock_guard<std::mutex> lock(mMutex);
        mRegistration = {function, context};
    }

    void Clear() { Set(nullptr, nullptr); }

    // Returns a copy: the function is called without a lock, so an event may still reach it after Clear().
    Registration Get() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mRegistration;
    }

  private:
    mutable std::mutex mMutex;
    Registration mRegistration;  // guarded by mMutex
};

}  // namespace tolm
