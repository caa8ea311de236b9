// Tells of the end of the service that a client listens to.
#pragma once

#include <hidl/HidlSupport.h>

#include <atomic>

#include "common/interruption.h"
#include "package/caller.h"

namespace hbbtv::ctl {

class DeathNotice : public android::hardware::hidl_death_recipient {
  public:
    // `interruption` is woken when a service dies.
    explicit DeathNotice(Interruption& interruption) : mInterruption(interruption) {}

    // From now on. Throws Failure(kPeerLost) when it is dead already.
    void Watch(const ServiceCaller& service);

    // Throws Failure(kPeerLost) when one has died.
    void Check() const;

    void serviceDied(uint64_t, const android::wp<android::hidl::base::V1_0::IBase>&) override;

  private:
    Interruption& mInterruption;
    std::atomic<bool> mDied{false};
};

}  // namespace hbbtv::ctl
