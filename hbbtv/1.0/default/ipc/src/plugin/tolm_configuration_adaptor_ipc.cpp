#include "ipc/src/plugin/tolm_configuration_adaptor_ipc.h"

#include <utility>

#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_log.h"

using namespace tolm;

namespace {

constexpr const char* kTag = families::kConfiguration.tag;

// Returns whether the code is known.
bool Decode(const Json::Value& msg, TolmConfigurationEvent event, TolmConfigurationEventInfo& info) {
    switch (event) {
        case TOLM_CONFIGURATION_EVENT_RESOLUTION:
            return Read(msg, {ToUInt("w", info.width), ToUInt("h", info.height)});
        case TOLM_CONFIGURATION_EVENT_UI_LANGUAGE:
            return Read(msg, {ToText("uiLang", info.uiLanguage)});
        case TOLM_CONFIGURATION_EVENT_AUDIO_LANGUAGE:
            return Read(msg, {ToText("audLang", info.audioLanguage)});
        case TOLM_CONFIGURATION_EVENT_SUBTITLE_LANGUAGE:
            return Read(msg, {ToText("prefSubLang", info.subtitleLanguage)});
        case TOLM_CONFIGURATION_EVENT_SUBTITLES:
            return Read(msg, {ToBool("isSubEnabled", info.subtitlesEnabled)});
        case TOLM_CONFIGURATION_EVENT_AUDIO_DESCRIPTION:
            return Read(msg, {ToBool("isADEnabled", info.audioDescriptionEnabled)});
        case TOLM_CONFIGURATION_EVENT_HEARING_IMPAIRED:
            return Read(msg, {ToBool("aud_hearing_imp", info.hearingImpaired)});
        case TOLM_CONFIGURATION_EVENT_REGION:
            return Read(msg, {ToText("region", info.region)});
        case TOLM_CONFIGURATION_EVENT_RATING_AGE:
            return Read(msg, {ToInt("age", info.ratingAge)});
        case TOLM_CONFIGURATION_EVENT_DO_NOT_TRACK_POLICY:
            return Read(msg, {ToInt("do_not_track_policy", info.doNotTrackPolicy)});
        case TOLM_CONFIGURATION_EVENT_COOKIE_POLICY:
            return Read(msg, {ToInt("cookie_policy", info.cookiePolicy)});
        case TOLM_CONFIGURATION_EVENT_PERSISTENT_STORAGE:
            return Read(msg, {ToInt("persistent_storage", info.persistentStorage)});
        case TOLM_CONFIGURATION_EVENT_BLOCK_TRACKING_SITES:
            return Read(msg, {ToInt("block_track_sites", info.blockTrackingSites)});
        case TOLM_CONFIGURATION_EVENT_DEVICE_ID:
            return Read(msg, {ToInt("device_id", info.deviceId)});
        case TOLM_CONFIGURATION_EVENT_DEVICE_ID_TIMESTAMP:
            return Read(msg, {ToInt64("device_id_ts", info.deviceIdTimestamp)});
        default:
            return false;
    }
}

}  // namespace

TolmConfigurationAdaptorIpc::TolmConfigurationAdaptorIpc()
    : TolmAdaptorClient(families::kConfiguration),
      TolmBaseServer(*families::kConfiguration.events, families::kConfiguration.port) {
    Start();
}

TolmConfigurationAdaptorIpc::~TolmConfigurationAdaptorIpc() {
    TolmBaseServer::Stop();
}

int TolmConfigurationAdaptorIpc::GetPreferredAudioLanguage(std::string& languages) {
    return Call(0, {}, {ToText("pref_audio_language", languages)});
}

int TolmConfigurationAdaptorIpc::SetPreferredAudioLanguage(const std::string& languages) {
    return Call(1, {Text("pref_audio_language", languages)});
}

int TolmConfigurationAdaptorIpc::GetPreferredSubtitleLanguage(std::string& languages) {
    return Call(2, {}, {ToText("pref_sub_language", languages)});
}

int TolmConfigurationAdaptorIpc::SetPreferredSubtitleLanguage(const std::string& languages) {
    return Call(3, {Text("pref_sub_language", languages)});
}

int TolmConfigurationAdaptorIpc::GetPreferredUILanguage(std::string& languages) {
    return Call(4, {}, {ToText("pref_ui_language", languages)});
}

int TolmConfigurationAdaptorIpc::SetPreferredUILanguage(const std::string& languages) {
    return Call(5, {Text("pref_ui_language", languages)});
}

int TolmConfigurationAdaptorIpc::GetCountryId(std::string& countryId) {
    return Call(6, {}, {ToText("id", countryId)});
}

int TolmConfigurationAdaptorIpc::SetCountryId(const std::string& countryId) {
    return Call(7, {Text("id", countryId)});
}

int TolmConfigurationAdaptorIpc::GetRegionId(unsigned& regionId) {
    return Call(8, {}, {ToUInt("reg_id", regionId)});
}

int TolmConfigurationAdaptorIpc::SetRegionId(unsigned regionId) {
    return Call(9, {UInt("reg_id", regionId)});
}

int TolmConfigurationAdaptorIpc::GetPvrPolicy(int& policy) {
    return Call(10, {}, {ToInt("pvr_policy", policy)});
}

int TolmConfigurationAdaptorIpc::SetPvrPolicy(int policy) {
    return Call(11, {Int("pvr_policy", policy)});
}

int TolmConfigurationAdaptorIpc::GetPvrSaveEpisodes(unsigned& episodes) {
    return Call(12, {}, {ToUInt("epis", episodes)});
}

int TolmConfigurationAdaptorIpc::SetPvrSaveEpisodes(unsigned episodes) {
    return Call(13, {UInt("epis", episodes)});
}

int TolmConfigurationAdaptorIpc::GetPvrSaveDays(unsigned& days) {
    return Call(14, {}, {ToUInt("days", days)});
}

int TolmConfigurationAdaptorIpc::SetPvrSaveDays(unsigned days) {
    return Call(15, {UInt("days", days)});
}

int TolmConfigurationAdaptorIpc::GetPvrStartPadding(unsigned& padding) {
    return Call(16, {}, {ToUInt("start_pad", padding)});
}

int TolmConfigurationAdaptorIpc::SetPvrStartPadding(unsigned padding) {
    return Call(17, {UInt("start_pad", padding)});
}

int TolmConfigurationAdaptorIpc::GetPvrEndPadding(unsigned& padding) {
    return Call(18, {}, {ToUInt("end_pad", padding)});
}

int TolmConfigurationAdaptorIpc::SetPvrEndPadding(unsigned padding) {
    return Call(19, {UInt("end_pad", padding)});
}

// Unsigned here, but signed in the request that sets it.
int TolmConfigurationAdaptorIpc::GetPreferredTimeShiftMode(int& mode) {
    unsigned value = 0;
    const int status = Call(20, {}, {ToUInt("timeshift_mode", value)});
    if (status == 0) mode = static_cast<int>(value);
    return status;
}

int TolmConfigurationAdaptorIpc::SetPreferredTimeShiftMode(int mode) {
    return Call(21, {Int("timeshift_mode", mode)});
}

int TolmConfigurationAdaptorIpc::GetText(int keyType, std::string& text) {
    return Call(22, {Int("key_type", keyType)}, {ToText("info", text)});
}

// Has the code of GetText and does not send the key.
int TolmConfigurationAdaptorIpc::SetText(int, const std::string& text) {
    return Call(22, {Text("info", text)});
}

int TolmConfigurationAdaptorIpc::GetAudioDescriptionEnable(bool& enabled) {
    return Call(24, {}, {ToBool("enable", enabled)});
}

int TolmConfigurationAdaptorIpc::GetAudioHearingImpaired(bool& enabled) {
    return Call(25, {}, {ToBool("enable", enabled)});
}

int TolmConfigurationAdaptorIpc::GetDeviceIdContent(std::string& serial, std::string& product,
                                                    std::string& requestTime) {
    return Call(26, {}, {ToText("serial", serial), ToText("product", product), ToText("request_time", requestTime)});
}

int TolmConfigurationAdaptorIpc::GetDeviceIdEnable(bool& enabled) {
    return Call(27, {}, {ToBool("enable", enabled)});
}

int TolmConfigurationAdaptorIpc::GetSubtitleEnable(bool& enabled) {
    return Call(28, {}, {ToBool("enable", enabled)});
}

int TolmConfigurationAdaptorIpc::ReplaceUIElement(unsigned size, unsigned index, int ui) {
    return Call(31, {UInt("size", size), UInt("index", index), Int("ui", ui)});
}

int TolmConfigurationAdaptorIpc::GetDttNetworkIds(std::vector<int>& networkIds) {
    return Call(32, {}, {ToNumberedInts("num", networkIds)});
}

int TolmConfigurationAdaptorIpc::RegisterCallback(TolmConfigurationEventCallback callback) {
    mCallback.Set(callback, nullptr);
    return Call(33, {});
}

int TolmConfigurationAdaptorIpc::UnregisterCallback() {
    mCallback.Clear();
    return Call(34, {});
}

int TolmConfigurationAdaptorIpc::GetRatingAge(int& age) {
    return Call(35, {}, {ToInt("age", age)});
}

int TolmConfigurationAdaptorIpc::GetDNTPolicy(int& policy) {
    return Call(36, {}, {ToInt("dnt", policy)});
}

void TolmConfigurationAdaptorIpc::SetDeviceResolutionCallback(TolmDeviceResolutionCallback callback) {
    LogScope scope(kTag);
    mDeviceResolutionCallback.Set(callback, nullptr);
}

void TolmConfigurationAdaptorIpc::SetDNTValueCallback(TolmDNTValueCallback callback) {
    LogScope scope(kTag);
    mDNTValueCallback.Set(callback, nullptr);
}

void TolmConfigurationAdaptorIpc::ReceiveIpc(const Json::Value& msg) {
    const auto receiver = mCallback.Get();
    if (receiver.function == nullptr) {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "callback is null");
        return;
    }
    const TolmConfigurationEvent event = ReadInt(msg, "event");
    TolmConfigurationEventInfo info;
    if (!Decode(msg, event, info)) TOLM_LOG(ANDROID_LOG_WARN, kTag, "wrong event type %d", event);
    receiver.function(event, std::move(info), receiver.context);
}

void TolmConfigurationAdaptorIpc::ReceiveIpc(const Json::Value&, Json::Value&) {
    TOLM_LOG(ANDROID_LOG_ERROR, kTag, "Could not be called here");
}
