// The user's preferences: IConfiguration over the platform's configuration adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IConfiguration.h>

#include "ipc/src/plugin/tolm_configuration_adaptor_ipc.h"
#include "utils/include/tolm_debug.h"
#include "utils/include/tolm_hidl_client_monitor.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using V1_0::IConfiguration;
using V1_0::IConfigurationCallback;

class Configuration : public TolmService<IConfiguration>, public TolmHidlClientMonitor {
  public:
    Configuration();

    Return<void> GetPreferredAudioLanguage(GetPreferredAudioLanguage_cb _hidl_cb) override;
    Return<int32_t> SetPreferredAudioLanguage(const hidl_string& languages) override;
    Return<void> GetPreferredSubtitleLanguage(GetPreferredSubtitleLanguage_cb _hidl_cb) override;
    Return<int32_t> SetPreferredSubtitleLanguage(const hidl_string& languages) override;
    Return<void> GetPreferredUILanguage(GetPreferredUILanguage_cb _hidl_cb) override;
    Return<int32_t> SetPreferredUILanguage(const hidl_string& languages) override;
    Return<void> GetCountryId(GetCountryId_cb _hidl_cb) override;
    Return<int32_t> SetCountryId(const hidl_string& countryId) override;
    Return<void> GetRegionId(GetRegionId_cb _hidl_cb) override;
    Return<int32_t> SetRegionId(uint32_t regionId) override;
    Return<void> GetAudioDescriptionEnable(GetAudioDescriptionEnable_cb _hidl_cb) override;
    Return<void> GetAudioHearingImpaired(GetAudioHearingImpaired_cb _hidl_cb) override;
    Return<void> GetDeviceIdContent(GetDeviceIdContent_cb _hidl_cb) override;
    Return<void> GetDeviceIdEnable(GetDeviceIdEnable_cb _hidl_cb) override;
    Return<void> GetSubtitleEnable(GetSubtitleEnable_cb _hidl_cb) override;
    Return<void> GetDttNetworkIds(GetDttNetworkIds_cb _hidl_cb) override;
    Return<void> GetRatingAge(GetRatingAge_cb _hidl_cb) override;
    Return<void> GetDNTPolicy(GetDNTPolicy_cb _hidl_cb) override;
    Return<int32_t> RegisterCallback(const sp<IConfigurationCallback>& callback) override;
    Return<int32_t> UnregisterCallback(const sp<IConfigurationCallback>& callback) override;

    void OnHidlClientDied(uint64_t cookie, const wp<::android::hidl::base::V1_0::IBase>& who) override;
};

// Forwards an event of the adaptor to all registered clients. Called on the adaptor's server thread.
void TolmConfigurationCallback(const TolmConfigurationEvent& event, ::TolmConfigurationEventInfo info,
                               const void* context);

extern "C" IConfiguration* HIDL_FETCH_IConfiguration(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
