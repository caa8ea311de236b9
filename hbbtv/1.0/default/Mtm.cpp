#include "Mtm.h"

#include "MtmCallback.h"
#include "utils/include/tolm_hidl_answer.h"
#include "utils/include/tolm_service_tags.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmMtmAdaptorIpc;

namespace {

TolmRegisteredClient<IMtmCallback> mMtmCallback;
MtmCallback gBridge(mMtmCallback);  // what the adaptor calls, whichever client is registered

}  // namespace

Mtm::Mtm() : TolmHidlClientMonitor(tolm::kMtmTag, mMtmCallback, tolm::families::kMtm) {}

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
    mMtmCallback.Register(this, callback, &Adaptor::RegisterCallback, &gBridge);
    return ::android::hardware::Void();
}

// Unlike in the other services, the client stays if there is no adaptor.
Return<void> Mtm::UnregisterCallback() {
    if (Adaptor::GetInstance() != nullptr) mMtmCallback.Unregister(this, &Adaptor::UnRegisterCallback);
    return ::android::hardware::Void();
}

void Mtm::OnHidlClientDied(uint64_t, const wp<::android::hidl::base::V1_0::IBase>& who) {
    mMtmCallback.OnDied(this, who, &Adaptor::UnRegisterCallback);
}

const TolmRegisteredClient<IMtmCallback>& Mtm::RegisteredClient() {
    return mMtmCallback;
}

IMtm* HIDL_FETCH_IMtm(const char*) {
    return new Mtm();
}

}  // namespace vantorel::hardware::hbbtv::implementation
