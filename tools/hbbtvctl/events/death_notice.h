// Reports the death of a service.
#pragma once

#include <hidl/HidlSupport.h>

#include <atomic>

#include "common/interruption.h"
#include "package/caller.h"

namespace hbbtv::ctl {

class DeathNotice : public android::hardware::hidl_death_recipient {
  public:
    // The death of a service wakes `interruption`.
    explicit DeathNotice(Interruption& interruption) : mInterruption(interruption) {}

    // Throws Failure(kPeerLost) if the service is dead already.
    void Watch(const ServiceCaller& service);

    // Throws Failure(kPeerLost) if a watched service has died.
    void Check() const;

    void serviceDied(uint64_t, const android::wp<android::hidl::base::V1_0::IBase>&) override;

  private:
    Interruption& mInterruption;
    std::atomic<bool> mDied{false};
};

}  // namespace hbbtv::ctl
