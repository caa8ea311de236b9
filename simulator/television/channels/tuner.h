// The television's one tuner.
#pragma once

#include <memory>

#include "core/changes.h"
#include "television/channels/channel.h"

namespace hbbtv::sim {

// One tuner for the viewer and all applications. Whoever connects or presents uses it; it stays on its channel when
// the user lets go, so there is always a channel on.
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

    // By something that is no application: nobody can tune then.
    void TakeAway(bool taken) { mTaken = taken; }
    bool TakenAway() const { return mTaken; }

    Changes<> changed;  // another channel is on

    bool recorded = false;  // what is on is being recorded: no change of channel

  private:
    std::shared_ptr<Channel> mOn;
    const void* mUser = nullptr;
    const void* mLatest = nullptr;
    bool mTaken = false;
};

}  // namespace hbbtv::sim
