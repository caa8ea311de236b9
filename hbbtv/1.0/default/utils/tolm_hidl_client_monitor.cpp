#include "utils/include/tolm_hidl_client_monitor.h"

#include <algorithm>

#include "ipc/tolm_log.h"

bool TolmServiceInstance::HasClient() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return !mRecipients.empty() && !mRecipients.back()->IsDied();
}

void TolmServiceInstance::Add(const android::sp<Recipient>& recipient) {
    std::lock_guard<std::mutex> lock(mMutex);
    mRecipients.push_back(recipient);
}

void TolmServiceInstance::Remove(const android::sp<Recipient>& recipient) {
    std::lock_guard<std::mutex> lock(mMutex);
    const auto found = std::find(mRecipients.begin(), mRecipients.end(), recipient);
    if (found != mRecipients.end()) mRecipients.erase(found);
}

TolmHidlClientMonitor::TolmHidlClientMonitor(const char* tag, TolmServiceInstance* instance)
    : mTag(tag), mInstance(instance), mRecipient(new TolmHidlClientDeathRecipient(this)) {
    if (mInstance != nullptr) mInstance->Add(mRecipient);
}

TolmHidlClientMonitor::~TolmHidlClientMonitor() {
    if (mInstance != nullptr) mInstance->Remove(mRecipient);
    mRecipient->Detach();
}

// A client that is dead already cannot be linked or unlinked; its notice comes all the same, or is not wanted. The
// process ends when nobody looks at a transport that has failed, so isOk() is asked.
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
    TOLM_LOG(ANDROID_LOG_INFO, mTag, "ClientDeathRecipient::StopMonitor");
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
