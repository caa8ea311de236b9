#include <algorithm>

#include "ipc/tolm_log.h"
#include "utils/include/i_tolm_death_recipient.h"
#include "utils/include/tolm_service_tags.h"

void TolmHidlClientDeathRecipient::serviceDied(uint64_t cookie, const android::wp<IBase>& who) {
    tolm::LogScope scope(tolm::kHidlBaseTag);
    bool watched = false;
    {
        std::unique_lock<std::shared_mutex> lock(mMutex);
        const auto client = std::find(mWatched.begin(), mWatched.end(), who);
        watched = client != mWatched.end();
        if (watched) {
            mWatched.erase(client);
            mDied = true;
        }
    }
    if (watched) {
        std::lock_guard<std::mutex> lock(mListenerMutex);
        if (mListener != nullptr) mListener->OnHidlClientDied(cookie, who);
    }
}

void TolmHidlClientDeathRecipient::Watch(const android::sp<IBase>& client) {
    std::unique_lock<std::shared_mutex> lock(mMutex);
    mDied = false;
    if (client != nullptr) mWatched.emplace_back(client);
}

void TolmHidlClientDeathRecipient::Unwatch(const android::sp<IBase>& client) {
    std::unique_lock<std::shared_mutex> lock(mMutex);
    const auto found = std::find(mWatched.begin(), mWatched.end(), android::wp<IBase>(client));
    if (found != mWatched.end()) mWatched.erase(found);
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
