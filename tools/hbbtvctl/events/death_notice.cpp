#include "events/death_notice.h"

#include "common/failure.h"

namespace hbbtv::ctl {

void DeathNotice::Watch(const ServiceCaller& service) {
    mDied = mDied || !service.Service()->linkToDeath(this, 0).withDefault(false);
    Check();
}

void DeathNotice::Check() const {
    if (!mDied) return;
    throw Failure(kPeerLost, "the service ended; check its log, restart it, and listen again");
}

void DeathNotice::serviceDied(uint64_t, const android::wp<android::hidl::base::V1_0::IBase>&) {
    mDied = true;
    mInterruption.Wake();
}

}  // namespace hbbtv::ctl
