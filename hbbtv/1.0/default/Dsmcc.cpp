#include "Dsmcc.h"

#include <mutex>

#include "ipc/tolm_log.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmDsmccAdaptorIpc;

namespace {

constexpr char kMonitorTag[] = "[hidl_video_broadcast_wrapper_client]";  // shared with the video/broadcast service
constexpr char kTag[] = "[hidl_dsmcc_wrapper_client]";

TolmClientHolder<IDsmccCallback> mCallback;
TolmServiceInstance mService;

// The client and the watch over it change together. Not taken by events.
std::mutex mRegistering;

}  // namespace

Dsmcc::Dsmcc() : TolmHidlClientMonitor(kMonitorTag, &mService) {}

Return<int32_t> Dsmcc::RegisterCallback(const sp<IDsmccCallback>& cb) {
    if (cb == nullptr) {
        TOLM_LOG(ANDROID_LOG_ERROR, kMonitorTag, "cb is null");
        return -1;
    }
    std::lock_guard<std::mutex> lock(mRegistering);
    Hold(mCallback, cb);
    return Status(&Adaptor::BrowserRegisterCallback, &TolmBacBrowserDSMCCFileCallback);
}

// The adaptor keeps the forwarding function, which says in the log that there is no client.
Return<int32_t> Dsmcc::UnregisterCallback() {
    std::lock_guard<std::mutex> lock(mRegistering);
    Drop(mCallback);
    return 0;
}

Return<int32_t> Dsmcc::OnRequestFile(const hidl_string& url, int64_t context) {
    return Status(&Adaptor::RequestFile, url, Handle(context));
}

Return<int32_t> Dsmcc::OnReleaseFile(const hidl_string& url, int64_t context) {
    return Status(&Adaptor::ReleaseFile, url, Handle(context));
}

void Dsmcc::OnHidlClientDied(uint64_t, const wp<::android::hidl::base::V1_0::IBase>& who) {
    TOLM_LOG(ANDROID_LOG_INFO, kMonitorTag, "ClientDeathRecipient::serviceDied - client died");
    std::lock_guard<std::mutex> lock(mRegistering);
    DropDead(mCallback, who);
}

void TolmBacBrowserDSMCCFileCallback(TolmDSMCCFileEventType type, const char* filePath, const void* context) {
    const sp<IDsmccCallback> client = mCallback.Get();
    if (client == nullptr || !mService.HasClient()) {
        TOLM_LOG(ANDROID_LOG_ERROR, kTag, "IDsmccCallback callback is null");
        return;
    }
    // The client may have died just now: then there is nobody to tell.
    (void)client->OnDsmccFileEvent(type, "", filePath, ToHandle(context)).isOk();
}

IDsmcc* HIDL_FETCH_IDsmcc(const char*) {
    return new Dsmcc();
}

}  // namespace vantorel::hardware::hbbtv::implementation
