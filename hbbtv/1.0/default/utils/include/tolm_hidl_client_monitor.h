// The base of the services that watch the processes of their clients.
#pragma once

#include <mutex>
#include <vector>

#include "ipc/src/tolm_family.h"
#include "ipc/tolm_log.h"
#include "utils/include/i_tolm_death_recipient.h"

// The service objects of one class that exist. Events arrive at functions that have no service object at hand; this is
// where they look whether there is one. Thread-safe.
class TolmServiceInstances {
  public:
    using Recipient = TolmHidlClientDeathRecipient;

    // Returns whether a service exists and its client-gone flag is clear. If there are several, the newest one counts.
    bool HasClient() const;

  private:
    friend class TolmHidlClientMonitor;

    void Add(const android::sp<Recipient>& recipient);
    void Remove(const android::sp<Recipient>& recipient);

    mutable std::mutex mMutex;
    std::vector<android::sp<Recipient>> mRecipients;  // guarded by mMutex
};

// Thread-safe.
class TolmHidlClientMonitor : public ITolmHidlClientEvent {
  public:
    using IBase = android::hidl::base::V1_0::IBase;

    // Starts watching a client's process. OnHidlClientDied() is called once if it dies. Clears the client-gone flag.
    void StartMonitor(const android::sp<IBase>& cb);

    // Stops watching a client's process. Sets the client-gone flag.
    void StopMonitor(const android::sp<IBase>& cb);

    // Stops watching a client's process without a log line or a change of the flag. Null is ignored.
    void Forget(const android::sp<IBase>& client);

    // Sets the client-gone flag, for a service with several clients.
    void SetClientDied(bool died) { mRecipient->SetDied(died); }

    const char* Tag() const { return mTag; }

  protected:
    // `tag` is that of the log lines about the client. The service is one of `instances` as long as it exists.
    TolmHidlClientMonitor(const char* tag, TolmServiceInstances& instances, const tolm::Family& family);
    ~TolmHidlClientMonitor();

  private:
    const char* const mTag;
    TolmServiceInstances& mInstances;
    const android::sp<TolmHidlClientDeathRecipient> mRecipient;
};

// A service in one of its methods, which passes `this`: log lines written on its behalf name the method.
class TolmServiceMethod {
  public:
    TolmServiceMethod(TolmHidlClientMonitor* service, const char* file = __builtin_FILE(), int line = __builtin_LINE(),
                      const char* function = __builtin_FUNCTION())
        : mService(service), mPlace{file, line, function} {}

    TolmHidlClientMonitor* operator->() const { return mService; }

    // Returns whether there is a callback, and logs an error if not.
    bool Accepts(const android::sp<android::hidl::base::V1_0::IBase>& callback) const;

    // Write the lines of a client's death and of StopMonitor().
    void LogDeath() const;
    void LogStop() const;

  private:
    TolmHidlClientMonitor* const mService;
    const tolm::Place mPlace;
};
