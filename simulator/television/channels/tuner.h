// The television's one tuner.
#pragma once

#include <memory>

#include "core/changes.h"
#include "television/channels/channel.h"

namespace hbbtv::sim {

// One tuner for the viewer and all applications. Objects that connect or present use it; it stays on its channel when
// released, so a channel is always on.
class Tuner {
  public:
    const std::shared_ptr<Channel>& On() const { return mOn; }
    bool FreeFor(const void* user) const { return !mTaken && (mUser == nullptr || mUser == user); }
    const void* LatestUser() const { return mLatest; }

    bool Used() const { return mUser != nullptr; }

    void Set(std::shared_ptr<Channel> channel);
    void Use(const void* user, std::shared_ptr<Channel> channel);
    void Leave(const void* user);
    void Forget(const void* user);

    // Taken by something other than an application: tuning is impossible.
    void TakeAway(bool taken) { mTaken = taken; }
    bool TakenAway() const { return mTaken; }

    Changes<> changed;  // another channel is on

    bool recorded = false;  // the channel is being recorded and cannot be changed

  private:
    std::shared_ptr<Channel> mOn;
    const void* mUser = nullptr;
    const void* mLatest = nullptr;
    bool mTaken = false;
};

}  // namespace hbbtv::sim
