// How a service learns that the client which registered a callback with it has died.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/HidlSupport.h>

#include <mutex>
#include <shared_mutex>
#include <vector>

// Told of a client's death, on a thread of the HIDL pool.
class ITolmHidlClientEvent {
  public:
    // `who` is the callback that was registered; nobody may hold it any more.
    virtual void OnHidlClientDied(uint64_t cookie, const android::wp<android::hidl::base::V1_0::IBase>& who) = 0;

  protected:
    ~ITolmHidlClientEvent() = default;  // nobody owns a service by this interface
};

// The death recipient of one service, and its flag that says whether there is no living client. The runtime holds it
// weakly; the service keeps it.
class TolmHidlClientDeathRecipient : public android::hardware::hidl_death_recipient {
  public:
    using IBase = android::hidl::base::V1_0::IBase;

    explicit TolmHidlClientDeathRecipient(ITolmHidlClientEvent* listener) : mListener(listener) {}

    // Sets the flag and tells the listener, unless the client is not watched any more: then another one has taken its
    // place, and the notice only came late.
    void serviceDied(uint64_t cookie, const android::wp<IBase>& who) override;

    // Watches a client and clears the flag.
    void Watch(const android::sp<IBase>& client);

    // Forgets a client.
    void Unwatch(const android::sp<IBase>& client);

    void SetDied(bool died);
    bool IsDied() const;

    // The listener is told no more when this returns.
    void Detach();

  private:
    std::mutex mListenerMutex;        // held while the listener is told
    ITolmHidlClientEvent* mListener;  // guarded by mListenerMutex, not owned

    mutable std::shared_mutex mMutex;
    bool mDied = false;                        // guarded by mMutex
    std::vector<android::wp<IBase>> mWatched;  // guarded by mMutex
};
