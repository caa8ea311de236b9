// The user's preferences that applications may read, and the events of their changes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"
#include "ipc/src/tolm_base_server.h"
#include "ipc/src/tolm_callback_slot.h"

// Event codes of the wire.
using TolmConfigurationEvent = int32_t;
enum : TolmConfigurationEvent {
    TOLM_CONFIGURATION_EVENT_RESOLUTION = 0,
    TOLM_CONFIGURATION_EVENT_UI_LANGUAGE = 1,
    TOLM_CONFIGURATION_EVENT_AUDIO_LANGUAGE = 2,
    TOLM_CONFIGURATION_EVENT_SUBTITLE_LANGUAGE = 3,
    TOLM_CONFIGURATION_EVENT_SUBTITLES = 4,
    TOLM_CONFIGURATION_EVENT_AUDIO_DESCRIPTION = 5,
    TOLM_CONFIGURATION_EVENT_HEARING_IMPAIRED = 6,
    TOLM_CONFIGURATION_EVENT_REGION = 7,
    TOLM_CONFIGURATION_EVENT_RATING_AGE = 8,
    TOLM_CONFIGURATION_EVENT_DO_NOT_TRACK_POLICY = 9,
    TOLM_CONFIGURATION_EVENT_COOKIE_POLICY = 10,
    TOLM_CONFIGURATION_EVENT_PERSISTENT_STORAGE = 11,
    TOLM_CONFIGURATION_EVENT_BLOCK_TRACKING_SITES = 12,
    TOLM_CONFIGURATION_EVENT_DEVICE_ID = 13,
    TOLM_CONFIGURATION_EVENT_DEVICE_ID_TIMESTAMP = 14,
};

// The members of the event's code are set; all others are 0 or empty. A code without a name has no member.
struct TolmConfigurationEventInfo {
    uint32_t width = 0;
    uint32_t height = 0;
    std::string uiLanguage;
    std::string audioLanguage;
    std::string subtitleLanguage;
    bool subtitlesEnabled = false;
    bool audioDescriptionEnabled = false;
    bool hearingImpaired = false;
    std::string region;
    int32_t ratingAge = 0;
    int32_t doNotTrackPolicy = 0;
    int32_t cookiePolicy = 0;
    int32_t persistentStorage = 0;
    int32_t blockTrackingSites = 0;
    int32_t deviceId = 0;
    int64_t deviceIdTimestamp = 0;
};

// Called for one event at a time, on the endpoint's server thread. The context is always null.
using TolmConfigurationEventCallback = void (*)(const TolmConfigurationEvent& event, TolmConfigurationEventInfo info,
                                                const void* context);

using TolmDeviceResolutionCallback = void (*)(unsigned width, unsigned height);
using TolmDNTValueCallback = void (*)(int value);

// The platform defines the integers.
class TolmConfigurationAdaptorIpc : public tolm::TolmAdaptorClient,
                                    public TolmBaseServer,
                                    public tolm::TolmAdaptorInstance<TolmConfigurationAdaptorIpc> {
  public:
    int GetPreferredAudioLanguage(std::string& languages);
    int SetPreferredAudioLanguage(const std::string& languages);
    int GetPreferredSubtitleLanguage(std::string& languages);
    int SetPreferredSubtitleLanguage(const std::string& languages);
    int GetPreferredUILanguage(std::string& languages);
    int SetPreferredUILanguage(const std::string& languages);
    int GetCountryId(std::string& countryId);
    int SetCountryId(const std::string& countryId);
    int GetRegionId(unsigned& regionId);
    int SetRegionId(unsigned regionId);
    int GetPvrPolicy(int& policy);
    int SetPvrPolicy(int policy);
    int GetPvrSaveEpisodes(unsigned& episodes);
    int SetPvrSaveEpisodes(unsigned episodes);
    int GetPvrSaveDays(unsigned& days);
    int SetPvrSaveDays(unsigned days);
    int GetPvrStartPadding(unsigned& padding);
    int SetPvrStartPadding(unsigned padding);
    int GetPvrEndPadding(unsigned& padding);
    int SetPvrEndPadding(unsigned padding);
    int GetPreferredTimeShiftMode(int& mode);
    int SetPreferredTimeShiftMode(int mode);
    int GetText(int keyType, std::string& text);
    int SetText(int keyType, const std::string& text);
    int GetAudioDescriptionEnable(bool& enabled);
    int GetAudioHearingImpaired(bool& enabled);
    int GetDeviceIdContent(std::string& serial, std::string& product, std::string& requestTime);
    int GetDeviceIdEnable(bool& enabled);
    int GetSubtitleEnable(bool& enabled);
    int ReplaceUIElement(unsigned size, unsigned index, int ui);

    // Appends the ids.
    int GetDttNetworkIds(std::vector<int>& networkIds);

    // Replaces the receiver of the events, even if the platform does not reply.
    int RegisterCallback(TolmConfigurationEventCallback callback);
    int UnregisterCallback();

    int GetRatingAge(int& age);
    int GetDNTPolicy(int& policy);

    // Keeps the function. No event calls it.
    void SetDeviceResolutionCallback(TolmDeviceResolutionCallback callback);
    void SetDNTValueCallback(TolmDNTValueCallback callback);

    void ReceiveIpc(const Json::Value& msg) override;
    void ReceiveIpc(const Json::Value& msg, Json::Value& reply) override;

  private:
    friend class tolm::TolmAdaptorInstance<TolmConfigurationAdaptorIpc>;
    TolmConfigurationAdaptorIpc();
    ~TolmConfigurationAdaptorIpc() override;

    tolm::TolmCallbackSlot<TolmConfigurationEventCallback> mCallback;
    tolm::TolmCallbackSlot<TolmDeviceResolutionCallback> mDeviceResolutionCallback;
    tolm::TolmCallbackSlot<TolmDNTValueCallback> mDNTValueCallback;
};
