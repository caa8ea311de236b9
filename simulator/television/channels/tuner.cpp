#include "television/channels/tuner.h"

namespace hbbtv::sim {

void Tuner::Set(std::shared_ptr<Channel> channel) {
    if (channel == mOn) return;
    mOn = std::move(channel);
    changed.Notify();
}

void Tuner::Use(const void* user, std::shared_ptr<Channel> channel) {
    mUser = user;
    mLatest = user;
    Set(std::move(channel));
}

void Tuner::Leave(const void* user) {
    if (mUser == user) mUser = nullptr;
}

void Tuner::Forget(const void* user) {
    Leave(user);
    if (mLatest == user) mLatest = nullptr;
}

}  // namespace hbbtv::sim
