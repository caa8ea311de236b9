// The viewer's preferences: reading and setting them, and the events that report changes.
#include "family/family_setup.h"

#include "core/error.h"
#include "family/members.h"

namespace hbbtv::sim {

namespace {

using P = Preference;

struct PreferenceEvent {
    const char* name;
    const char* member;
};

// Returns null for preferences without an event.
const PreferenceEvent* EventOf(Preference preference) {
    static const std::map<Preference, PreferenceEvent> events{
        {P::Resolution, {"resolution", "w"}},
        {P::UiLanguage, {"UI language", "uiLang"}},
        {P::AudioLanguage, {"audio language", "audLang"}},
        {P::SubtitleLanguage, {"subtitle language", "prefSubLang"}},
        {P::Subtitles, {"subtitles", "isSubEnabled"}},
        {P::AudioDescription, {"audio description", "isADEnabled"}},
        {P::HearingImpaired, {"hearing impaired", "aud_hearing_imp"}},
        {P::Region, {"region", "region"}},
        {P::RatingAge, {"rating age", "age"}},
        {P::DoNotTrack, {"do-not-track policy", "do_not_track_policy"}},
        {P::CookiePolicy, {"cookie policy", "cookie_policy"}},
        {P::PersistentStorage, {"persistent storage", "persistent_storage"}},
        {P::BlockTrackingSites, {"blocked sites", "block_track_sites"}},
        {P::DeviceId, {"device id", "device_id"}},
        {P::DeviceIdTime, {"device id time stamp", "device_id_ts"}}};
    const auto found = events.find(preference);
    return found == events.end() ? nullptr : &found->second;
}

// Width or height of "1920x1080".
unsigned Side(const std::string& resolution, bool width) {
    const size_t by = resolution.find('x');
    return static_cast<unsigned>(std::stoul(width ? resolution.substr(0, by) : resolution.substr(by + 1)));
}

Preference TextWith(int key) {
    static const std::vector<Preference> texts{P::NoTitle, P::NoSynopsis, P::ManualRecording};
    return At(texts, key);
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
    void Gives(const char* name, Preference preference, const char* member);
    void Takes(const char* name, Preference preference, const char* member,
               Json::Value (*read)(const Arguments&, const char*));

    void GetText(In in, Out out) { out["info"] = mPreferences.Get(TextWith(in.Int("key_type"))); }
    void SetText(In in, Out);
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
    std::map<unsigned, int> mReplaced;  // those received, by index
};

ConfigurationFamily::ConfigurationFamily(const FamilySetup& setup)
    : Family("configuration"),
      mPreferences(setup.tv.preferences),
      mDevice(setup.tv.device),
      mSink(Sends(setup.makeSink,
                  {"resolution", "UI language", "audio language", "subtitle language", "subtitles", "audio description",
                   "hearing impaired", "region", "rating age", "do-not-track policy", "cookie policy",
                   "persistent storage", "blocked sites", "device id", "device id time stamp"})) {
    using F = ConfigurationFamily;
    Gives("GetPreferredAudioLanguage", P::AudioLanguage, "pref_audio_language");
    Takes("SetPreferredAudioLanguage", P::AudioLanguage, "pref_audio_language", TextOf);
    Gives("GetPreferredSubtitleLanguage", P::SubtitleLanguage, "pref_sub_language");
    Takes("SetPreferredSubtitleLanguage", P::SubtitleLanguage, "pref_sub_language", TextOf);
    Gives("GetPreferredUILanguage", P::UiLanguage, "pref_ui_language");
    Takes("SetPreferredUILanguage", P::UiLanguage, "pref_ui_language", TextOf);
    Gives("GetCountryId", P::Country, "id");
    Takes("SetCountryId", P::Country, "id", TextOf);
    Gives("GetRegionId", P::Region, "reg_id");
    Takes("SetRegionId", P::Region, "reg_id", UIntOf);
    Gives("GetPvrPolicy", P::PvrPolicy, "pvr_policy");
    Takes("SetPvrPolicy", P::PvrPolicy, "pvr_policy", IntOf);
    Gives("GetPvrSaveEpisodes", P::PvrSaveEpisodes, "epis");
    Takes("SetPvrSaveEpisodes", P::PvrSaveEpisodes, "epis", UIntOf);
    Gives("GetPvrSaveDays", P::PvrSaveDays, "days");
    Takes("SetPvrSaveDays", P::PvrSaveDays, "days", UIntOf);
    Gives("GetPvrStartPadding", P::PvrStartPadding, "start_pad");
    Takes("SetPvrStartPadding", P::PvrStartPadding, "start_pad", UIntOf);
    Gives("GetPvrEndPadding", P::PvrEndPadding, "end_pad");
    Takes("SetPvrEndPadding", P::PvrEndPadding, "end_pad", UIntOf);
    Gives("GetPreferredTimeShiftMode", P::TimeShiftMode, "timeshift_mode");
    Takes("SetPreferredTimeShiftMode", P::TimeShiftMode, "timeshift_mode", IntOf);
    Row("GetText", &F::GetText);
    Row("SetText", &F::SetText, "info");
    Gives("GetAudioDescriptionEnable", P::AudioDescription, "enable");
    Gives("GetAudioHearingImpaired", P::HearingImpaired, "enable");
    Row("GetDeviceIdContent", &F::GetDeviceIdContent);
    Gives("GetDeviceIdEnable", P::DeviceId, "enable");
    Gives("GetSubtitleEnable", P::Subtitles, "enable");
    Row("ReplaceUIElement", &F::ReplaceUIElement);
    Row("GetDttNetworkIds", &F::GetDttNetworkIds);
    Row("RegisterCallback", &F::RegisterCallback);
    Row("UnregisterCallback", &F::UnregisterCallback);
    Gives("GetRatingAge", P::RatingAge, "age");
    Gives("GetDNTPolicy", P::DoNotTrack, "dnt");
    AddCommand("set PREFERENCE VALUE", "change a preference", &F::Set);
    AddCommand("get [PREFERENCE]", "show a preference, or all", &F::Get);
    mPreferences.changed.Watch([this](Preference preference) { Tell(preference); });
}

void ConfigurationFamily::Gives(const char* name, Preference preference, const char* member) {
    Row(name, [this, preference, member](In, Out out) { out[member] = mPreferences.Get(preference); });
}

void ConfigurationFamily::Takes(const char* name, Preference preference, const char* member,
                                Json::Value (*read)(const Arguments&, const char*)) {
    Row(name, [this, preference, member, read](In in, Out) { mPreferences.Set(preference, read(in, member)); });
}

void ConfigurationFamily::Tell(Preference preference) {
    const PreferenceEvent* event = EventOf(preference);
    if (!mRegistered || event == nullptr) return;
    const Json::Value& value = mPreferences.Get(preference);
    Json::Value members;
    members[event->member] = value;
    if (preference == P::Region) members[event->member] = value.asString();
    if (preference == P::DeviceId) members[event->member] = value.asBool() ? 1 : 0;
    if (preference == P::Resolution) {
        members["w"] = Side(value.asString(), true);
        members["h"] = Side(value.asString(), false);
    }
    mSink.Send(event->name, members);
}

// The library does not send the string's key, and a missing key is 0 on this wire.
void ConfigurationFamily::SetText(In in, Out) {
    mPreferences.Set(TextWith(in.Has("key_type") ? in.Int("key_type") : 0), in.ShortText("info"));
}

void ConfigurationFamily::GetDeviceIdContent(In, Out out) {
    const bool there = mPreferences.Get(P::DeviceId).asBool();
    out["serial"] = there ? mDevice.SerialNumber() : "";
    out["product"] = there ? mPreferences.Get(P::Product) : "";
    out["request_time"] = there ? mPreferences.Get(P::DeviceIdTime).asString() : "";
}

// The elements arrive one by one and take effect when all have arrived. A different size starts again.
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
