// How a service is notified when a client that registered a callback with it dies.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/HidlSupport.h>

#include <mutex>
#include <shared_mutex>
#include <vector>

#include "ipc/status/tolm_endpoint_status.h"

// Receives the death of a client, on a thread of the HIDL pool.
class ITolmHidlClientEvent {
  public:
    // `who` is the callback that was registered. The last strong reference to it may be gone.
    virtual void OnHidlClientDied(uint64_t cookie, const android::wp<android::hidl::base::V1_0::IBase>& who) = 0;

  protected:
    ~ITolmHidlClientEvent() = default;  // services are not deleted through this interface
};

// The death recipient of one service, with its client-gone flag. Thread-safe. The runtime holds it weakly; the service
// keeps it.
class TolmHidlClientDeathRecipient : public android::hardware::hidl_death_recipient {
  public:
    using IBase = android::hidl::base::V1_0::IBase;

    // Reports the processes of the watched clients to `status`.
    TolmHidlClientDeathRecipient(ITolmHidlClientEvent* listener, tolm::EndpointStatus& status)
        : mStatus(status), mListener(listener) {}
    ~TolmHidlClientDeathRecipient() override;

    // Sets the flag and notifies the listener. Ignored if the client is no longer watched: then another client has
    // replaced it, and the notice is late.
    void serviceDied(uint64_t cookie, const android::wp<IBase>& who) override;

    // Adds a client, whose process this thread serves, to the watched ones and clears the flag.
    void Watch(const android::sp<IBase>& client);

    // Removes a client from the watched ones.
    void Unwatch(const android::sp<IBase>& client);

    void SetDied(bool died);
    bool IsDied() const;

    // When it returns, the listener is not called any more.
    void Detach();

  private:
    struct Watched {
        android::wp<IBase> client;
        pid_t process;
    };

    // Returns whether the client was watched.
    bool RemoveLocked(const android::wp<IBase>& client);

    tolm::EndpointStatus& mStatus;

    std::mutex mListenerMutex;        // held while the listener is called
    ITolmHidlClientEvent* mListener;  // guarded by mListenerMutex, not owned

    mutable std::shared_mutex mMutex;
    bool mDied = false;             // guarded by mMutex
    std::vector<Watched> mWatched;  // guarded by mMutex
};
