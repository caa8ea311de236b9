#include "Dsmcc.h"

#include "utils/include/tolm_hidl_answer.h"
#include "utils/include/tolm_hidl_transaction.h"
#include "utils/include/tolm_registered_client.h"
#include "utils/include/tolm_service_tags.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmDsmccAdaptorIpc;

namespace {

TolmRegisteredClient<IDsmccCallback> mDsmccCallback;

}  // namespace

Dsmcc::Dsmcc() : TolmHidlClientMonitor(tolm::kVideoBroadcastTag, mDsmccCallback, tolm::families::kDsmcc) {}

// The client is held even without an adaptor.
Return<int32_t> Dsmcc::RegisterCallback(const sp<IDsmccCallback>& cb) {
    return mDsmccCallback.Replace(this, cb)
               ? TolmCallAdaptor(&Adaptor::BrowserRegisterCallback, TolmBacBrowserDSMCCFileCallback)
               : -1;
}

// The adaptor keeps the forwarding function, which logs that there is no client.
Return<int32_t> Dsmcc::UnregisterCallback() {
    mDsmccCallback.Drop(this);
    return 0;
}

Return<int32_t> Dsmcc::OnRequestFile(const hidl_string& url, int64_t context) {
    return Status(&Adaptor::RequestFile, url, Handle(context));
}

Return<int32_t> Dsmcc::OnReleaseFile(const hidl_string& url, int64_t context) {
    return Status(&Adaptor::ReleaseFile, url, Handle(context));
}

void Dsmcc::OnHidlClientDied(uint64_t, const wp<::android::hidl::base::V1_0::IBase>& who) {
    mDsmccCallback.OnDied(this, who);
}

void TolmBacBrowserDSMCCFileCallback(TolmDSMCCFileEventType type, const char* filePath, const void* context) {
    const sp<IDsmccCallback> client = mDsmccCallback.GetLiving();
    if (client == nullptr) {
        TOLM_LOG(ANDROID_LOG_ERROR, tolm::kDsmccTag, "IDsmccCallback callback is null");
        return;
    }
    tolm::Received(client->OnDsmccFileEvent(type, "", filePath, ToHandle(context)), tolm::kDsmccTag);
}

IDsmcc* HIDL_FETCH_IDsmcc(const char*) {
    return new Dsmcc();
}

}  // namespace vantorel::hardware::hbbtv::implementation
