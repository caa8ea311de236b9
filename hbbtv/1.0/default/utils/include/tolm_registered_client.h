// The client that has registered its callback with a service. There is one for the whole process: a further
// registration replaces it. Its callback, the watch over its process and the adaptor's receiver change together.
//
//     TolmRegisteredClient<IAVControlCallback> mAVControlCallback;
//
//     Return<int32_t> AVControl::RegisterCallback(const sp<IAVControlCallback>& cb, int64_t) {
//         return mAVControlCallback.Register(this, cb, &Adaptor::RegisterCallback, TolmAVControlComponentCallback);
//     }
#pragma once

#include <mutex>
#include <type_traits>
#include <utility>

#include "ipc/src/tolm_caller_queue.h"
#include "ipc/tolm_reply_timeout.h"
#include "utils/include/tolm_hidl_client_monitor.h"

// Calls an operation of an adaptor. Returns its status, 0 for an operation without one, or -1 without an adaptor.
template <typename Result, typename Adaptor, typename... Parameters, typename... Arguments>
int TolmCallAdaptor(Result (Adaptor::*operation)(Parameters...), const Arguments&... arguments) {
    Adaptor* adaptor = Adaptor::GetInstance();
    if (adaptor == nullptr) return -1;
    if constexpr (std::is_void_v<Result>) {
        (adaptor->*operation)(arguments...);
        return 0;
    } else {
        return (adaptor->*operation)(arguments...);
    }
}

// Thread-safe.
template <typename Callback>
class TolmRegisteredClient : public TolmServiceInstances {
  public:
    using IBase = android::hidl::base::V1_0::IBase;

    // Returns the client's callback, or null. Never waits for a registration, so events may call it.
    android::sp<Callback> Get() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCallback;
    }

    // As above, but returns null also when no service exists or the client-gone flag is set.
    android::sp<Callback> GetLiving() const { return HasClient() ? Get() : nullptr; }

    // Replaces the client, starts watching its process and calls `operation` of the adaptor. Returns its status. A null
    // callback (an error line) and a missing adaptor change nothing and return -1, as does a registration that is open
    // for so long that no more may wait for it.
    template <typename Result, typename Adaptor, typename... Parameters, typename... Arguments>
    int Register(const TolmServiceMethod& service, const android::sp<Callback>& callback,
                 Result (Adaptor::*operation)(Parameters...), const Arguments&... arguments) {
        if (!service.Accepts(callback) || Adaptor::GetInstance() == nullptr) return -1;
        const tolm::CallerQueue::Turn turn(mRegistering);
        if (!turn) return -1;
        ReplaceLocked(service, callback);
        return TolmCallAdaptor(operation, arguments...);
    }

    // As above, without the adaptor. Returns whether there is a callback.
    bool Replace(const TolmServiceMethod& service, const android::sp<Callback>& callback) {
        if (!service.Accepts(callback)) return false;
        const tolm::CallerQueue::Turn turn(mRegistering);
        if (!turn) return false;
        ReplaceLocked(service, callback);
        return true;
    }

    // Stops watching the client's process, drops the client and calls `operation` of the adaptor. Returns its status.
    template <typename Result, typename Adaptor, typename... Parameters, typename... Arguments>
    int Unregister(const TolmServiceMethod& service, Result (Adaptor::*operation)(Parameters...),
                   const Arguments&... arguments) {
        const tolm::CallerQueue::Turn turn(mRegistering);
        if (!turn) return -1;
        DropLocked(service);
        return TolmCallAdaptor(operation, arguments...);
    }

    // As above, without the adaptor.
    void Drop(const TolmServiceMethod& service) {
        const tolm::CallerQueue::Turn turn(mRegistering);
        if (!turn) return;
        DropLocked(service);
    }

    // Drops a client that has died and calls `operation`, if any, of the adaptor. Only logs the death if the client has
    // been replaced in the meantime.
    template <typename... Operation>
    void OnDied(const TolmServiceMethod& service, const android::wp<IBase>& who, Operation... operation) {
        service.LogDeath();
        const tolm::CallerQueue::Turn turn(mRegistering);
        if (!turn) return DropDead(who);
        if (android::wp<IBase>(android::sp<IBase>(Get())) != who) return;
        DropLocked(service);
        (TolmCallAdaptor(operation), ...);
    }

  private:
    void ReplaceLocked(const TolmServiceMethod& service, const android::sp<Callback>& callback) {
        service->Forget(Exchange(callback));
        service->StartMonitor(callback);
    }

    void DropLocked(const TolmServiceMethod& service) {
        service->StopMonitor(Get());
        Exchange(nullptr);
    }

    android::sp<Callback> Exchange(android::sp<Callback> callback) {
        std::lock_guard<std::mutex> lock(mMutex);
        return std::exchange(mCallback, std::move(callback));
    }

    // Without the turn, when the platform does not reply.
    void DropDead(const android::wp<IBase>& who) {
        android::sp<Callback> dropped;
        std::lock_guard<std::mutex> lock(mMutex);
        if (android::wp<IBase>(android::sp<IBase>(mCallback)) == who) dropped = std::exchange(mCallback, nullptr);
    }

    // A turn is while the client, the watch and the adaptor's receiver change, for which the platform may be called;
    // events need none.
    tolm::CallerQueue mRegistering{Callback::descriptor, tolm::ReplyTimeout()};

    mutable std::mutex mMutex;
    android::sp<Callback> mCallback;  // guarded by mMutex
};
