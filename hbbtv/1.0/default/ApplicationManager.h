// The HbbTV applications of the television: IApplicationManager over the platform's application manager.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IApplicationManager.h>

#include "ipc/src/plugin/tolm_apm_adaptor_ipc.h"
#include "utils/include/tolm_debug.h"
#include "utils/include/tolm_hidl_client_monitor.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using V1_0::IAIPEventCallback;
using V1_0::IApplicationManager;

class ApplicationManager : public TolmService<IApplicationManager>, public TolmHidlClientMonitor {
  public:
    ApplicationManager();

    Return<void> GetOwnerApp(int32_t appId, int32_t orgId, GetOwnerApp_cb _hidl_cb) override;
    Return<void> GetCurrentApp(GetCurrentApp_cb _hidl_cb) override;
    Return<void> GetChildApps(int32_t appId, int32_t orgId, GetChildApps_cb _hidl_cb) override;
    Return<void> CreateApplication(int32_t appId, int32_t orgId, const hidl_string& url, bool child, bool opapp,
                                   CreateApplication_cb _hidl_cb) override;
    Return<int32_t> DestroyApplication(int32_t appId, int32_t orgId) override;
    Return<int32_t> Show(int32_t appId, int32_t orgId) override;
    Return<int32_t> Hide(int32_t appId, int32_t orgId) override;
    Return<void> GetValue(int32_t appId, int32_t orgId, GetValue_cb _hidl_cb) override;
    Return<void> GetOtherKeys(int32_t appId, int32_t orgId, GetOtherKeys_cb _hidl_cb) override;
    Return<void> GetMaxiMumValue(int32_t appId, int32_t orgId, GetMaxiMumValue_cb _hidl_cb) override;
    Return<void> GetMaxiMumOtherKeys(int32_t appId, int32_t orgId, GetMaxiMumOtherKeys_cb _hidl_cb) override;
    Return<int32_t> SetValue(int32_t appId, int32_t orgId, int32_t value, const hidl_vec<int32_t>& otherKeys) override;
    Return<void> GetKeyIcon(int32_t appId, int32_t orgId, int32_t code, GetKeyIcon_cb _hidl_cb) override;
    Return<void> GetKeyLabel(int32_t appId, int32_t orgId, int32_t code, GetKeyLabel_cb _hidl_cb) override;
    Return<void> GetVBResouceAllowed(int32_t tabId, GetVBResouceAllowed_cb _hidl_cb) override;
    Return<int32_t> SetBRAppToBI(int32_t tabId) override;
    Return<int32_t> SetBIAppToBR(int32_t tabId) override;
    Return<void> KeyConsumedByBrowser(int32_t tabId, int32_t keyCode, KeyConsumedByBrowser_cb _hidl_cb) override;
    Return<int32_t> NotifyDSMCCResponseToAPM(const hidl_string& url, const hidl_string& path) override;
    Return<void> GetAppType(int32_t tabId, GetAppType_cb _hidl_cb) override;
    Return<int32_t> SetDeviceResolution(uint32_t width, uint32_t height) override;
    Return<int32_t> RegisterCallback(V1_0::TolmAIPEvent event, const sp<IAIPEventCallback>& callback,
                                     int64_t context) override;
    Return<int32_t> UnregisterCallback(V1_0::TolmAIPEvent event, int64_t context) override;

    void OnHidlClientDied(uint64_t cookie, const wp<::android::hidl::base::V1_0::IBase>& who) override;
};

// The functions that are registered with the adaptor: one per event (events 1, 2 and 3 share one), in the order of
// IAIPEventCallback. Each forwards to its event's client. A null string counts as empty; values behind pointers are
// only read.
void onApplicationEventCallback(const ::TolmAIPEvent& event, const ::TolmAIPEventInfo& info, const void* context);
void onApplicationTopMost(int appId, int orgId, const void* context);
void onApplicationNoTopMost(int appId, int orgId, const void* context);
void onApplicationDestroyRequest(int appId, int orgId, const void* context);
void onKeyPress(int first, int second, const void* context);
void onKeyUp(int first, int second, const void* context);
void onKeyDown(int first, int second, const void* context);
void onIsParentalratingBlocked(int first, int second, bool* blocked);
void onRequestDsmccFile(const char* fileName, const void* context);
void onReleaseDsmccFile(const char* fileName, const void* context);
void onIsObjectSupported(const char* objectType, bool* supported);
void onGetConfiguration();
void onPlatformInitialize();
void onPlatformFinalize();
void onHandleBroadcastService(bool enabled);
void onSetBroadcastFullScreen(bool fullScreen);
void onOpappStateChange(int first, int second, const char* text1, const char* text2, const char* text3);
void onOpappContextChange(int first, int second, const char* text1, const char* text2, const char* text3);
void onOpappUpdate(int first, int second, const char* text);
void onGetLocalParantalRating(const char* countryCode, int32_t* rating);

extern "C" IApplicationManager* HIDL_FETCH_IApplicationManager(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
