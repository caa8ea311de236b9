// The one instance of an adaptor class: made when it is first needed, kept until the process ends or somebody deletes
// it.
#pragma once

#include <atomic>
#include <mutex>
#include <new>
#include <type_traits>

#include "ipc/src/tolm_base_server.h"

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
    // event; an event that is under way is waited for.
    static void DeleteInstance() {
        std::lock_guard<std::mutex> lock(sMutex);
        Adaptor* const instance = sInstance.load(std::memory_order_relaxed);
        if (instance == nullptr) return;
        // While the pointer is still there: the handler that is waited for may ask for the instance, and must not wait
        // for the mutex in its turn.
        if constexpr (std::is_base_of_v<TolmBaseServer, Adaptor>) instance->TolmBaseServer::Stop();
        sInstance.store(nullptr, std::memory_order_release);
        delete instance;
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
