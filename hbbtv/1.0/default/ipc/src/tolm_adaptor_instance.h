// The singleton of an adaptor class: created on first use, kept until the process ends or it is deleted.
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
    // Returns the instance, or null if there is no memory for it. Thread-safe.
    static Adaptor* GetInstance() {
        if (Adaptor* instance = sInstance.load(std::memory_order_acquire)) return instance;
        std::lock_guard<std::mutex> lock(sMutex);
        if (sInstance.load(std::memory_order_relaxed) == nullptr) {
            sInstance.store(new (std::nothrow) Adaptor(), std::memory_order_release);
        }
        return sInstance.load(std::memory_order_relaxed);
    }

    // Deletes the instance and stops serving its endpoint. Waits for an event that is being handled. Must not be called
    // while another thread uses the instance, nor by the handler of an event.
    static void DeleteInstance() {
        std::lock_guard<std::mutex> lock(sMutex);
        Adaptor* const instance = sInstance.load(std::memory_order_relaxed);
        if (instance == nullptr) return;
        // The pointer is still set: a handler that Stop() waits for may call GetInstance(), and must not wait for the
        // mutex.
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
