// What the viewer has set for all applications: languages, accessibility, recording, privacy. There is one set of
// preferences; each is kept as soon as it is set and is back when the television is switched on again.
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
    Resolution
};

class Preferences {
  public:
    // `networkIds` are those of the terrestrial networks of the line-up, which count until the viewer sets others.
    Preferences(const StateStore& store, const std::vector<int>& networkIds);

    // A text, an integer, true or false, or a list of integers: what a preference is does not change.
    const Json::Value& Get(Preference preference) const { return mValues.at(preference); }

    // Throws Refused when the preference cannot have this value or cannot be kept; then nothing has changed.
    void Set(Preference preference, Json::Value value);

    // The same as people write it: "deu,eng", "7", "on". Refuses names that no preference has.
    void SetFromText(const std::string& name, const std::string& text);
    std::string AsText(const std::string& name) const;

    static std::vector<std::string> Names();

    Changes<Preference> changed;  // this one has another value than before

  private:
    void Take(const Json::Value& document);

    const StateStore& mStore;
    std::map<Preference, Json::Value> mValues;
    Json::Value mKept{Json::objectValue};  // by name, what was ever set
};

}  // namespace hbbtv::sim
