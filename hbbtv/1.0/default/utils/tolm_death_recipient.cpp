#include <algorithm>

#include "ipc/src/tolm_calling_process.h"
#include "ipc/tolm_log.h"
#include "utils/include/i_tolm_death_recipient.h"
#include "utils/include/tolm_service_tags.h"

TolmHidlClientDeathRecipient::~TolmHidlClientDeathRecipient() {
    for (const Watched& watched : mWatched) mStatus.RemoveClient(watched.process);
}

void TolmHidlClientDeathRecipient::serviceDied(uint64_t cookie, const android::wp<IBase>& who) {
    tolm::LogScope scope(tolm::kHidlBaseTag);
    bool watched = false;
    {
        std::unique_lock<std::shared_mutex> lock(mMutex);
        watched = RemoveLocked(who);
        if (watched) mDied = true;
    }
    if (watched) {
        std::lock_guard<std::mutex> lock(mListenerMutex);
        if (mListener != nullptr) mListener->OnHidlClientDied(cookie, who);
    }
}

void TolmHidlClientDeathRecipient::Watch(const android::sp<IBase>& client) {
    std::unique_lock<std::shared_mutex> lock(mMutex);
    mDied = false;
    if (client == nullptr) return;
    mWatched.push_back({android::wp<IBase>(client), tolm::ServedPid()});
    mStatus.AddClient(mWatched.back().process);
}

void TolmHidlClientDeathRecipient::Unwatch(const android::sp<IBase>& client) {
    std::unique_lock<std::shared_mutex> lock(mMutex);
    RemoveLocked(android::wp<IBase>(client));
}

bool TolmHidlClientDeathRecipient::RemoveLocked(const android::wp<IBase>& client) {
    const auto found = std::find_if(mWatched.begin(), mWatched.end(),
                                    [&](const Watched& watched) { return watched.client == client; });
    if (found == mWatched.end()) return false;
    mStatus.RemoveClient(found->process);
    mWatched.erase(found);
    return true;
}

void TolmHidlClientDeathRecipient::SetDied(bool died) {
    std::unique_lock<std::shared_mutex> lock(mMutex);
    mDied = died;
}

bool TolmHidlClientDeathRecipient::IsDied() const {
    std::shared_lock<std::shared_mutex> lock(mMutex);
    return mDied;
}

void TolmHidlClientDeathRecipient::Detach() {
    std::lock_guard<std::mutex> lock(mListenerMutex);
    mListener = nullptr;
}
