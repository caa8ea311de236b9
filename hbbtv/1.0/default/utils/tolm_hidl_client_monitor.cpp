#include "utils/include/tolm_hidl_client_monitor.h"

#include <algorithm>

namespace {

constexpr char kStopped[] = "ClientDeathRecipient::StopMonitor";

}  // namespace

bool TolmServiceInstances::HasClient() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return !mRecipients.empty() && !mRecipients.back()->IsDied();
}

void TolmServiceInstances::Add(const android::sp<Recipient>& recipient) {
    std::lock_guard<std::mutex> lock(mMutex);
    mRecipients.push_back(recipient);
}

void TolmServiceInstances::Remove(const android::sp<Recipient>& recipient) {
    std::lock_guard<std::mutex> lock(mMutex);
    const auto found = std::find(mRecipients.begin(), mRecipients.end(), recipient);
    if (found != mRecipients.end()) mRecipients.erase(found);
}

TolmHidlClientMonitor::TolmHidlClientMonitor(const char* tag, TolmServiceInstances& instances,
                                             const tolm::Family& family)
    : mTag(tag),
      mInstances(instances),
      mRecipient(new TolmHidlClientDeathRecipient(this, tolm::EndpointStatus::Of(*family.events))) {
    mInstances.Add(mRecipient);
}

TolmHidlClientMonitor::~TolmHidlClientMonitor() {
    mInstances.Remove(mRecipient);
    mRecipient->Detach();
}

// A client that is already dead cannot be linked or unlinked, which is ignored: its death is reported anyway, or no
// longer matters. A failed Return must be checked by isOk(): unchecked, it ends the process.
void TolmHidlClientMonitor::StartMonitor(const android::sp<IBase>& cb) {
    TOLM_LOG(ANDROID_LOG_INFO, mTag, "ClientDeathRecipient::StartMonitor");
    mRecipient->Watch(cb);
    if (cb != nullptr) {
        (void)cb->linkToDeath(mRecipient, 0).isOk();
    } else {
        TOLM_LOG(ANDROID_LOG_ERROR, mTag, "cb is null");
    }
}

void TolmHidlClientMonitor::StopMonitor(const android::sp<IBase>& cb) {
    TOLM_LOG(ANDROID_LOG_INFO, mTag, "%s", kStopped);
    mRecipient->SetDied(true);
    if (cb != nullptr) {
        Forget(cb);
    } else {
        TOLM_LOG(ANDROID_LOG_ERROR, mTag, "cb is null");
    }
}

void TolmHidlClientMonitor::Forget(const android::sp<IBase>& client) {
    if (client == nullptr) return;
    mRecipient->Unwatch(client);
    (void)client->unlinkToDeath(mRecipient).isOk();
}

bool TolmServiceMethod::Accepts(const android::sp<android::hidl::base::V1_0::IBase>& callback) const {
    if (callback != nullptr) return true;
    tolm::LogAt(mPlace, ANDROID_LOG_ERROR, mService->Tag(), "cb is null");
    return false;
}

void TolmServiceMethod::LogDeath() const {
    tolm::LogAt(mPlace, ANDROID_LOG_INFO, mService->Tag(), "ClientDeathRecipient::serviceDied - client died");
}

void TolmServiceMethod::LogStop() const {
    tolm::LogAt(mPlace, ANDROID_LOG_INFO, mService->Tag(), kStopped);
}
