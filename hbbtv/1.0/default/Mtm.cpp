#include "Mtm.h"

#include <mutex>

#include "MtmCallback.h"
#include "ipc/tolm_log.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmMtmAdaptorIpc;

namespace {

constexpr char kTag[] = "[hidl_mtm_wrapper_client]";

TolmClientHolder<IMtmCallback> mMtmCallback;
TolmServiceInstance mService;

// What the adaptor calls, whichever client is registered.
MtmCallback mBridge;

// The client, the watch over it and the adaptor's receiver change together. Not taken by events.
std::mutex mRegistering;

}  // namespace

Mtm::Mtm() : TolmHidlClientMonitor(kTag, &mService) {}

Return<int32_t> Mtm::OnTabCreated(int32_t tabId) {
    return Status(&Adaptor::OnTabCreated, tabId);
}

Return<int32_t> Mtm::OnTabDestroyed(int32_t tabId) {
    return Status(&Adaptor::OnTabDestroyed, tabId);
}

Return<int32_t> Mtm::OnRenderRequestCloseTab(int32_t tabId) {
    return Status(&Adaptor::OnRenderRequestCloseTab, tabId);
}

Return<int32_t> Mtm::OnAllTabsDestroyed() {
    return Status(&Adaptor::OnAllTabsDestroyed);
}

Return<int32_t> Mtm::OnTabFocus(int32_t tabId) {
    return Status(&Adaptor::OnTabFocus, tabId);
}

Return<int32_t> Mtm::OnTabHide(int32_t tabId) {
    return Status(&Adaptor::OnTabHide, tabId);
}

Return<int32_t> Mtm::OnTabShow(int32_t tabId) {
    return Status(&Adaptor::OnTabShow, tabId);
}

Return<int32_t> Mtm::OnLoadingStateChanged(bool isLoading, bool canBack, bool canForward) {
    return Status(&Adaptor::OnLoadingStateChanged, isLoading, canBack, canForward);
}

Return<int32_t> Mtm::OnAddressBarChanged(int32_t tabId, const hidl_string& url) {
    return Status(&Adaptor::OnAddressBarChanged, tabId, url);
}

Return<int32_t> Mtm::OnLoadProgressChanged(int32_t tabId, double progress) {
    return Status(&Adaptor::OnLoadProgressChanged, tabId, progress);
}

Return<int32_t> Mtm::OnTabTitleChanged(int32_t tabId, const hidl_string& title) {
    return Status(&Adaptor::OnTabTitleChanged, tabId, title);
}

Return<int32_t> Mtm::OnTabURLChanged(int32_t tabId, const hidl_string& url) {
    return Status(&Adaptor::OnTabURLChanged, tabId, url);
}

Return<int32_t> Mtm::OnTabLoadFinished(int32_t tabId, const hidl_string& url) {
    return Status(&Adaptor::OnTabLoadFinished, tabId, url);
}

Return<int32_t> Mtm::OnTabLoadFailed(int32_t tabId, const hidl_string& url, int32_t errorCode,
                                     const hidl_string& description) {
    return Status(&Adaptor::OnTabLoadFailed, tabId, url, errorCode, description);
}

Return<int32_t> Mtm::OnMemoryWarningDetected(int32_t memStatus) {
    return Status(&Adaptor::OnMemoryWarningDetected, memStatus);
}

Return<int32_t> Mtm::OnMemoryReduced(int32_t level, int32_t tabId) {
    return Status(&Adaptor::OnMemoryReduced, level, tabId);
}

Return<int32_t> Mtm::OnBlinkOutOfMemory(int32_t tabId) {
    return Status(&Adaptor::OnBlinkOutOfMemory, tabId);
}

Return<int32_t> Mtm::OnTabDocumentLoadedInFrame(int32_t tabId) {
    return Status(&Adaptor::OnTabDocumentLoadedInFrame, tabId);
}

Return<void> Mtm::RegisterCallback(const sp<IMtmCallback>& callback) {
    Adaptor* adaptor = Adaptor::GetInstance();
    if (callback == nullptr) TOLM_LOG(ANDROID_LOG_ERROR, kTag, "cb is null");
    if (adaptor == nullptr || callback == nullptr) return ::android::hardware::Void();
    std::lock_guard<std::mutex> lock(mRegistering);
    Hold(mMtmCallback, callback);
    adaptor->RegisterCallback(&mBridge);
    return ::android::hardware::Void();
}

Return<void> Mtm::UnregisterCallback() {
    Adaptor* adaptor = Adaptor::GetInstance();
    if (adaptor == nullptr) return ::android::hardware::Void();
    std::lock_guard<std::mutex> lock(mRegistering);
    Drop(mMtmCallback);
    adaptor->UnRegisterCallback();
    return ::android::hardware::Void();
}

void Mtm::OnHidlClientDied(uint64_t, const wp<::android::hidl::base::V1_0::IBase>& who) {
    TOLM_LOG(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::serviceDied - client died");
    std::lock_guard<std::mutex> lock(mRegistering);
    if (!DropDead(mMtmCallback, who)) return;
    if (Adaptor* adaptor = Adaptor::GetInstance()) adaptor->UnRegisterCallback();
}

sp<IMtmCallback> LivingMtmClient() {
    sp<IMtmCallback> client = mMtmCallback.Get();
    return mService.HasClient() ? client : nullptr;
}

IMtm* HIDL_FETCH_IMtm(const char*) {
    return new Mtm();
}

}  // namespace vantorel::hardware::hbbtv::implementation
