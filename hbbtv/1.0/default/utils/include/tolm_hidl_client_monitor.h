// What the services that have clients with callbacks share: the holder of the registered callback, and the watch over
// its process.
#pragma once

#include <mutex>
#include <utility>
#include <vector>

#include "utils/include/i_tolm_death_recipient.h"

// The registered callback of a service, or null. `sp` itself bears no two threads; this does.
template <typename Callback>
class TolmClientHolder {
  public:
    android::sp<Callback> Get() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCallback;
    }

    // Gives the callback that was held.
    android::sp<Callback> Exchange(android::sp<Callback> callback) {
        std::lock_guard<std::mutex> lock(mMutex);
        return std::exchange(mCallback, std::move(callback));
    }

  private:
    mutable std::mutex mMutex;
    android::sp<Callback> mCallback;  // guarded by mMutex
};

// The service object that there is, for functions that are called with its events and have none at hand: the youngest,
// should there be several. Any thread.
class TolmServiceInstance {
  public:
    using Recipient = TolmHidlClientDeathRecipient;

    // Whether there is one and its client lives.
    bool HasClient() const;

  private:
    friend class TolmHidlClientMonitor;

    void Add(const android::sp<Recipient>& recipient);
    void Remove(const android::sp<Recipient>& recipient);

    mutable std::mutex mMutex;
    std::vector<android::sp<Recipient>> mRecipients;  // guarded by mMutex
};

// Base of such a service. Any thread.
class TolmHidlClientMonitor : public ITolmHidlClientEvent {
  public:
    using IBase = android::hidl::base::V1_0::IBase;

    // Begins to watch a client's process: its death comes by OnHidlClientDied(), once.
    void StartMonitor(const android::sp<IBase>& cb);

    // Ends that.
    void StopMonitor(const android::sp<IBase>& cb);

  protected:
    // `tag` is that of the service's log lines. `instance`, if any, is this service as long as it lives.
    explicit TolmHidlClientMonitor(const char* tag, TolmServiceInstance* instance = nullptr);
    ~TolmHidlClientMonitor();

    // Corrects the flag that says that there is no living client, for a service with several.
    void SetClientDied(bool died) { mRecipient->SetDied(died); }

    // Puts a callback into the holder, in place of another one, and watches it. The service keeps this and the next two
    // from running at once.
    template <typename Callback>
    void Hold(TolmClientHolder<Callback>& holder, const android::sp<Callback>& callback) {
        Forget(holder.Exchange(callback));
        StartMonitor(callback);
    }

    // Empties the holder and ends the watch.
    template <typename Callback>
    void Drop(TolmClientHolder<Callback>& holder) {
        StopMonitor(holder.Get());
        holder.Exchange(nullptr);
    }

    // The same if the holder still holds the client that died: whether it did.
    template <typename Callback>
    bool DropDead(TolmClientHolder<Callback>& holder, const android::wp<IBase>& who) {
        const android::sp<Callback> held = holder.Get();
        if (android::wp<IBase>(android::sp<IBase>(held)) != who) return false;
        StopMonitor(held);
        holder.Exchange(nullptr);
        return true;
    }

    // Ends the watch over a client and leaves the flag alone; null is none.
    void Forget(const android::sp<IBase>& client);

  private:
    const char* const mTag;
    TolmServiceInstance* const mInstance;
    const android::sp<TolmHidlClientDeathRecipient> mRecipient;
};
