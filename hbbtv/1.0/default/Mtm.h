// The tabs of the browser: IMtm over the platform's tab manager.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IMtm.h>

#include "ipc/src/mtm/tolm_mtm_adaptor_ipc.h"
#include "utils/include/tolm_debug.h"
#include "utils/include/tolm_registered_client.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using V1_0::IMtm;
using V1_0::IMtmCallback;

class Mtm : public TolmService<IMtm>, public TolmHidlClientMonitor {
  public:
    Mtm();

    Return<int32_t> OnTabCreated(int32_t tabId) override;
    Return<int32_t> OnTabDestroyed(int32_t tabId) override;
    Return<int32_t> OnRenderRequestCloseTab(int32_t tabId) override;
    Return<int32_t> OnAllTabsDestroyed() override;
    Return<int32_t> OnTabFocus(int32_t tabId) override;
    Return<int32_t> OnTabHide(int32_t tabId) override;
    Return<int32_t> OnTabShow(int32_t tabId) override;
    Return<int32_t> OnLoadingStateChanged(bool isLoading, bool canBack, bool canForward) override;
    Return<int32_t> OnAddressBarChanged(int32_t tabId, const hidl_string& url) override;
    Return<int32_t> OnLoadProgressChanged(int32_t tabId, double progress) override;
    Return<int32_t> OnTabTitleChanged(int32_t tabId, const hidl_string& title) override;
    Return<int32_t> OnTabURLChanged(int32_t tabId, const hidl_string& url) override;
    Return<int32_t> OnTabLoadFinished(int32_t tabId, const hidl_string& url) override;
    Return<int32_t> OnTabLoadFailed(int32_t tabId, const hidl_string& url, int32_t errorCode,
                                    const hidl_string& description) override;
    Return<int32_t> OnMemoryWarningDetected(int32_t memStatus) override;
    Return<int32_t> OnMemoryReduced(int32_t level, int32_t tabId) override;
    Return<int32_t> OnBlinkOutOfMemory(int32_t tabId) override;
    Return<int32_t> OnTabDocumentLoadedInFrame(int32_t tabId) override;
    Return<void> RegisterCallback(const sp<IMtmCallback>& callback) override;
    Return<void> UnregisterCallback() override;

    void OnHidlClientDied(uint64_t cookie, const wp<::android::hidl::base::V1_0::IBase>& who) override;

    // Returns the client that is registered with any service object.
    static const TolmRegisteredClient<IMtmCallback>& RegisteredClient();
};

extern "C" IMtm* HIDL_FETCH_IMtm(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
