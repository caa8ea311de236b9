// The viewer's preferences: reading and setting them, and the events that report changes.
#include "family/family_setup.h"

#include "core/error.h"
#include "family/members.h"

namespace hbbtv::sim {

namespace {

using P = Preference;

struct PreferenceEvent {
    int code;
    const char* name;
    const char* member;
};

// Null for what changes without an event.
const PreferenceEvent* EventOf(Preference preference) {
    static const std::map<Preference, PreferenceEvent> events{
        {P::Resolution, {0, "ResolutionChanged", "w"}},
        {P::UiLanguage, {1, "UILanguageChanged", "uiLang"}},
        {P::AudioLanguage, {2, "AudioLanguageChanged", "audLang"}},
        {P::SubtitleLanguage, {3, "SubtitleLanguageChanged", "prefSubLang"}},
        {P::Subtitles, {4, "SubtitlesChanged", "isSubEnabled"}},
        {P::AudioDescription, {5, "AudioDescriptionChanged", "isADEnabled"}},
        {P::HearingImpaired, {6, "HearingImpairedChanged", "aud_hearing_imp"}},
        {P::Region, {7, "RegionChanged", "region"}},
        {P::RatingAge, {8, "RatingAgeChanged", "age"}},
        {P::DoNotTrack, {9, "DoNotTrackPolicyChanged", "do_not_track_policy"}},
        {P::CookiePolicy, {10, "CookiePolicyChanged", "cookie_policy"}},
        {P::PersistentStorage, {11, "PersistentStorageChanged", "persistent_storage"}},
        {P::BlockTrackingSites, {12, "BlockTrackingSitesChanged", "block_track_sites"}},
        {P::DeviceId, {13, "DeviceIdChanged", "device_id"}},
        {P::DeviceIdTime, {14, "DeviceIdTimeChanged", "device_id_ts"}}};
    const auto found = events.find(preference);
    return found == events.end() ? nullptr : &found->second;
}

// Width or height of "1920x1080".
unsigned Side(const std::string& resolution, bool width) {
    const size_t by = resolution.find('x');
    return static_cast<unsigned>(std::stoul(width ? resolution.substr(0, by) : resolution.substr(by + 1)));
}

Json::Value TextOf(const Arguments& in, const char* member) {
    return in.ShortText(member);
}

Json::Value IntOf(const Arguments& in, const char* member) {
    return in.Int(member);
}

Json::Value UIntOf(const Arguments& in, const char* member) {
    return in.UInt(member);
}

class ConfigurationFamily : public Family {
  public:
    explicit ConfigurationFamily(const FamilySetup& setup);

  private:
    void Gives(int code, const char* name, Preference preference, const char* member);
    void Takes(int code, const char* name, Preference preference, const char* member,
               Json::Value (*read)(const Arguments&, const char*));

    void GetOrSetText(In in, Out out);
    void GetDeviceIdContent(In, Out out);
    void ReplaceUIElement(In in, Out);
    void GetDttNetworkIds(In, Out out);
    void RegisterCallback(In, Out) { mRegistered = true; }
    void UnregisterCallback(In, Out) { mRegistered = false; }

    void Tell(Preference preference);

    // At the television.
    std::string Set(const Words& words);
    std::string Get(const Words& words);

    Preferences& mPreferences;
    Device& mDevice;
    EventSink& mSink;
    bool mRegistered = false;
    unsigned mReplacedOf = 0;           // the announced number of user interface elements
    std::map<unsigned, int> mReplaced;  // those that came, by their place
};

ConfigurationFamily::ConfigurationFamily(const FamilySetup& setup)
    : Family({"configuration", "service_plugin_to_hbbtv_conf", "service_hbbtv_to_plugin_conf", 12, "method", 9}),
      mPreferences(setup.tv.preferences),
      mDevice(setup.tv.device),
      mSink(setup.sinkOf(Address())) {
    using F = ConfigurationFamily;
    Gives(0, "GetPreferredAudioLanguage", P::AudioLanguage, "pref_audio_language");
    Takes(1, "SetPreferredAudioLanguage", P::AudioLanguage, "pref_audio_language", TextOf);
    Gives(2, "GetPreferredSubtitleLanguage", P::SubtitleLanguage, "pref_sub_language");
    Takes(3, "SetPreferredSubtitleLanguage", P::SubtitleLanguage, "pref_sub_language", TextOf);
    Gives(4, "GetPreferredUILanguage", P::UiLanguage, "pref_ui_language");
    Takes(5, "SetPreferredUILanguage", P::UiLanguage, "pref_ui_language", TextOf);
    Gives(6, "GetCountryId", P::Country, "id");
    Takes(7, "SetCountryId", P::Country, "id", TextOf);
    Gives(8, "GetRegionId", P::Region, "reg_id");
    Takes(9, "SetRegionId", P::Region, "reg_id", UIntOf);
    Gives(10, "GetPvrPolicy", P::PvrPolicy, "pvr_policy");
    Takes(11, "SetPvrPolicy", P::PvrPolicy, "pvr_policy", IntOf);
    Gives(12, "GetPvrSaveEpisodes", P::PvrSaveEpisodes, "epis");
    Takes(13, "SetPvrSaveEpisodes", P::PvrSaveEpisodes, "epis", UIntOf);
    Gives(14, "GetPvrSaveDays", P::PvrSaveDays, "days");
    Takes(15, "SetPvrSaveDays", P::PvrSaveDays, "days", UIntOf);
    Gives(16, "GetPvrStartPadding", P::PvrStartPadding, "start_pad");
    Takes(17, "SetPvrStartPadding", P::PvrStartPadding, "start_pad", UIntOf);
    Gives(18, "GetPvrEndPadding", P::PvrEndPadding, "end_pad");
    Takes(19, "SetPvrEndPadding", P::PvrEndPadding, "end_pad", UIntOf);
    Gives(20, "GetPreferredTimeShiftMode", P::TimeShiftMode, "timeshift_mode");
    Takes(21, "SetPreferredTimeShiftMode", P::TimeShiftMode, "timeshift_mode", IntOf);
    Row(22, "GetText or SetText", &F::GetOrSetText);
    Gives(24, "GetAudioDescriptionEnable", P::AudioDescription, "enable");
    Gives(25, "GetAudioHearingImpaired", P::HearingImpaired, "enable");
    Row(26, "GetDeviceIdContent", &F::GetDeviceIdContent);
    Gives(27, "GetDeviceIdEnable", P::DeviceId, "enable");
    Gives(28, "GetSubtitleEnable", P::Subtitles, "enable");
    Row(31, "ReplaceUIElement", &F::ReplaceUIElement);
    Row(32, "GetDttNetworkIds", &F::GetDttNetworkIds);
    Row(33, "RegisterCallback", &F::RegisterCallback);
    Row(34, "UnregisterCallback", &F::UnregisterCallback);
    Gives(35, "GetRatingAge", P::RatingAge, "age");
    Gives(36, "GetDNTPolicy", P::DoNotTrack, "dnt");
    AddCommand("set PREFERENCE VALUE", "the viewer changes a preference", &F::Set);
    AddCommand("get [PREFERENCE]", "what a preference is, or all", &F::Get);
    mPreferences.Watch([this](Preference preference) { Tell(preference); });
}

void ConfigurationFamily::Gives(int code, const char* name, Preference preference, const char* member) {
    Row(code, name, [this, preference, member](In, Out out) { out[member] = mPreferences.Get(preference); });
}

void ConfigurationFamily::Takes(int code, const char* name, Preference preference, const char* member,
                                Json::Value (*read)(const Arguments&, const char*)) {
    Row(code, name, [this, preference, member, read](In in, Out) { mPreferences.Set(preference, read(in, member)); });
}

void ConfigurationFamily::Tell(Preference preference) {
    const PreferenceEvent* told = EventOf(preference);
    if (!mRegistered || told == nullptr) return;
    const Json::Value& value = mPreferences.Get(preference);
    Json::Value event;
    event["event"] = told->code;
    event[told->member] = value;
    if (preference == P::Region) event[told->member] = value.asString();
    if (preference == P::DeviceId) event[told->member] = value.asBool() ? 1 : 0;
    if (preference == P::Resolution) {
        event["w"] = Side(value.asString(), true);
        event["h"] = Side(value.asString(), false);
    }
    mSink.Send(told->name, event);
}

// --- Requests that are more than one value

// SetText has the code of GetText and names no text; a key that is missing is 0 to everybody on this wire.
void ConfigurationFamily::GetOrSetText(In in, Out out) {
    static const std::vector<Preference> texts{P::NoTitle, P::NoSynopsis, P::ManualRecording};
    const bool sets = in.Has("info");
    const int key = sets && !in.Has("key_type") ? 0 : in.Int("key_type");
    const Preference text = At(texts, key);
    if (sets) {
        mPreferences.Set(text, in.ShortText("info"));
    } else {
        out["info"] = mPreferences.Get(text);
    }
}

void ConfigurationFamily::GetDeviceIdContent(In, Out out) {
    const bool there = mPreferences.Get(P::DeviceId).asBool();
    out["serial"] = there ? mDevice.SerialNumber() : "";
    out["product"] = there ? mPreferences.Get(P::Product) : "";
    out["request_time"] = there ? mPreferences.Get(P::DeviceIdTime).asString() : "";
}

// The elements come one by one and count when all of them are there. Another size begins anew.
void ConfigurationFamily::ReplaceUIElement(In in, Out) {
    const unsigned size = in.UInt("size");
    const unsigned index = in.UInt("index");
    const int element = in.Int("ui");
    if (index >= size) throw Refused("element " + std::to_string(index) + " of " + std::to_string(size));
    if (size > 100) throw Refused("more than 100 elements");
    if (size != mReplacedOf) mReplaced.clear();
    mReplacedOf = size;
    mReplaced[index] = element;
    if (mReplaced.size() < size) return;
    Json::Value elements(Json::arrayValue);
    for (const auto& replaced : mReplaced) elements.append(replaced.second);
    mReplaced.clear();
    mPreferences.Set(P::UiElements, elements);
}

void ConfigurationFamily::GetDttNetworkIds(In, Out out) {
    const Json::Value& ids = mPreferences.Get(P::NetworkIds);
    out["num"] = ids.size();
    for (Json::ArrayIndex i = 0; i < ids.size(); ++i) out["k" + std::to_string(i)] = ids[i];
}

// --- At the television

std::string ConfigurationFamily::Set(const Words& words) {
    if (words.size() < 2) throw WrongWords();
    std::string value = words[1];
    for (size_t i = 2; i < words.size(); ++i) value += " " + words[i];
    mPreferences.SetFromText(words[0], value);
    return "";
}

std::string ConfigurationFamily::Get(const Words& words) {
    if (words.size() > 1) throw WrongWords();
    if (words.size() == 1) return mPreferences.AsText(words[0]);
    std::string all;
    for (const std::string& name : Preferences::Names()) {
        all += (all.empty() ? "" : "; ") + name + " " + mPreferences.AsText(name);
    }
    return all;
}

}  // namespace

std::unique_ptr<Family> MakeConfigurationFamily(const FamilySetup& setup) {
    return std::make_unique<ConfigurationFamily>(setup);
}

}  // namespace hbbtv::sim
