// The one instance of an adaptor class: made when it is first needed, kept until the process ends or somebody deletes
// it.
#pragma once

#include <atomic>
#include <mutex>
#include <new>

namespace tolm {

template <typename Adaptor>
class TolmAdaptorInstance {
  public:
    // Null when there is no memory for it. Any thread.
    static Adaptor* GetInstance() {
        if (Adaptor* instance = sInstance.load(std::memory_order_acquire)) return instance;
        std::lock_guard<std::mutex> lock(sMutex);
        if (sInstance.load(std::memory_order_relaxed) == nullptr) {
            sInstance.store(new (std::nothrow) Adaptor(), std::memory_order_release);
        }
        return sInstance.load(std::memory_order_relaxed);
    }

    // Returns when its endpoint is no longer served. Not while another thread uses the instance, and not from inside an
    // event.
    static void DeleteInstance() {
        std::lock_guard<std::mutex> lock(sMutex);
        delete sInstance.exchange(nullptr, std::memory_order_acq_rel);
    }

  private:
    static std::atomic<Adaptor*> sInstance;
    static std::mutex sMutex;
};

template <typename Adaptor>
std::atomic<Adaptor*> TolmAdaptorInstance<Adaptor>::sInstance{nullptr};

template <typename Adaptor>
std::mutex TolmAdaptorInstance<Adaptor>::sMutex;

}  // namespace tolm
