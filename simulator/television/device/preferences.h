// The viewer's settings for all applications: languages, accessibility, recording, privacy. There is one set of
// preferences; each change is saved at once and loaded at the next start.
#pragma once

#include <json/value.h>

#include <map>
#include <string>
#include <vector>

#include "core/changes.h"
#include "television/device/state_store.h"

namespace hbbtv::sim {

enum class Preference {
    AudioLanguage,
    SubtitleLanguage,
    UiLanguage,
    Country,
    Region,
    Subtitles,
    AudioDescription,
    HearingImpaired,
    RatingAge,
    DoNotTrack,
    CookiePolicy,
    PersistentStorage,
    BlockTrackingSites,
    DeviceId,
    DeviceIdTime,
    Product,
    NetworkIds,
    PvrPolicy,
    PvrSaveEpisodes,
    PvrSaveDays,
    PvrStartPadding,
    PvrEndPadding,
    TimeShiftMode,
    NoTitle,
    NoSynopsis,
    ManualRecording,
    UiElements,
    Resolution,
    Count  // not a preference
};

class Preferences {
  public:
    // `networkIds` are those of the line-up's terrestrial networks, the default.
    Preferences(const StateStore& store, const std::vector<int>& networkIds);

    // Returns a string, an integer, a boolean, or a list of integers: the type of a preference is fixed.
    const Json::Value& Get(Preference preference) const { return mValues.at(preference); }

    // Throws Refused if the value is invalid or cannot be saved; then nothing has changed.
    void Set(Preference preference, Json::Value value);

    // The same in the form that people write: "deu,eng", "7", "on". Throws Refused for an unknown name.
    void SetFromText(const std::string& name, const std::string& text);
    std::string AsText(const std::string& name) const;

    static std::vector<std::string> Names();

    Changes<Preference> changed;  // the preference whose value has changed

  private:
    void Take(const Json::Value& document);

    const StateStore& mStore;
    std::map<Preference, Json::Value> mValues;
    Json::Value mKept{Json::objectValue};  // by name, all that have been set
};

}  // namespace hbbtv::sim
