#include "television/device/preferences.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "common/nearest_name.h"
#include "core/error.h"
#include "core/journal.h"

namespace hbbtv::sim {

namespace {

const char* const kDocument = "preferences";
constexpr size_t kMostListed = 100;  // the reply's numbered members have two digits
constexpr size_t kLongestText = 1024;
constexpr Json::Int64 kEndOfTime = 253402300799;  // the last second of the year 9999

struct Rule {
    Preference preference;
    const char* name;  // in commands and in the saved state
    Json::Value initial;
    const char* expected;
    std::function<bool(const Json::Value&)> fits;  // called with values of the initial value's type
};

bool AllOf(const std::string& text, char first, char last) {
    return std::all_of(text.begin(), text.end(), [&](char c) { return c >= first && c <= last; });
}

std::vector<std::string> Parts(const std::string& text) {
    std::vector<std::string> parts;
    for (size_t begin = 0;;) {
        const size_t comma = text.find(',', begin);
        parts.push_back(text.substr(begin, comma - begin));
        if (comma == std::string::npos) return parts;
        begin = comma + 1;
    }
}

// Comma-separated ISO 639-2, most preferred first (OIPF DAE volume 5).
bool IsLanguageList(const std::string& text, bool anyAllowed) {
    if (text.size() > kLongestText) return false;
    for (const std::string& part : Parts(text)) {
        const bool any = anyAllowed && part == "***";
        if (!any && (part.size() != 3 || !AllOf(part, 'a', 'z'))) return false;
    }
    return true;
}

bool AreLanguages(const Json::Value& value) {
    return IsLanguageList(value.asString(), false);
}

bool AreSubtitleLanguages(const Json::Value& value) {
    return IsLanguageList(value.asString(), true);
}

bool IsCountry(const Json::Value& value) {
    return value.asString().size() == 3 && AllOf(value.asString(), 'A', 'Z');
}

bool IsShort(const Json::Value& value) {
    return value.asString().size() <= kLongestText;
}

bool IsAnything(const Json::Value&) {
    return true;
}

std::function<bool(const Json::Value&)> From(Json::Int64 first, Json::Int64 last) {
    return [first, last](const Json::Value& value) { return value.asInt64() >= first && value.asInt64() <= last; };
}

// The ages that a DVB rating can express, or none.
bool IsRatingAge(const Json::Value& value) {
    return value.asInt64() == 0 || From(4, 18)(value);
}

bool AreNetworkIds(const Json::Value& list) {
    return std::all_of(list.begin(), list.end(), From(0, 65535));
}

// Published types of operator applications: parts of the television mode, messages, places, and all of them.
bool AreUiElements(const Json::Value& list) {
    static const std::set<Json::Int64> known{0, 1, 2, 3, 4, 32, 33, 34, 35, 64, 65, 66, 67, 68, 127};
    return std::all_of(list.begin(), list.end(), [](const auto& element) { return known.count(element.asInt64()); });
}

bool IsResolution(const Json::Value& value) {
    static const std::set<std::string> known{"720x576", "1280x720", "1920x1080", "3840x2160", "7680x4320"};
    return known.count(value.asString()) != 0;
}

const std::vector<Rule>& Rules() {
    using P = Preference;
    static const char* const languages = "languages of three lower-case letters (ISO 639-2) with commas between them";
    static const char* const onOff = "on or off";
    static const char* const shortText = "a text of at most 1024 bytes";
    static const Rule all[] = {
        {P::AudioLanguage, "audio-language", "deu,eng", languages, AreLanguages},
        {P::SubtitleLanguage, "subtitle-language", "deu,eng", languages, AreSubtitleLanguages},
        {P::UiLanguage, "ui-language", "eng", languages, AreLanguages},
        {P::Country, "country", "DEU", "a country of three capital letters (ISO 3166)", IsCountry},
        {P::Region, "region", 0, "0 to 60", From(0, 60)},
        {P::Subtitles, "subtitles", false, onOff, IsAnything},
        {P::AudioDescription, "audio-description", false, onOff, IsAnything},
        {P::HearingImpaired, "hearing-impaired", false, onOff, IsAnything},
        {P::RatingAge, "rating-age", 18, "4 to 18, or 0", IsRatingAge},
        {P::DoNotTrack, "do-not-track", 0, "0 to 2", From(0, 2)},
        {P::CookiePolicy, "cookie-policy", 0, "0 to 2", From(0, 2)},
        {P::PersistentStorage, "persistent-storage", 1, "0 or 1", From(0, 1)},
        {P::BlockTrackingSites, "block-tracking-sites", 0, "0 or 1", From(0, 1)},
        {P::DeviceId, "device-id", true, onOff, IsAnything},
        {P::DeviceIdTime, "device-id-time", Json::Int64{1767225600}, "seconds since 1970", From(0, kEndOfTime)},
        {P::Product, "product", "Simulated television", shortText, IsShort},
        {P::NetworkIds, "network-ids", Json::arrayValue, "at most 100 numbers from 0 to 65535, or none", AreNetworkIds},
        {P::PvrPolicy, "pvr-policy", 0, "0 to 2", From(0, 2)},
        {P::PvrSaveEpisodes, "pvr-save-episodes", 0, "0 to 10000", From(0, 10000)},
        {P::PvrSaveDays, "pvr-save-days", 0, "0 to 3650", From(0, 3650)},
        {P::PvrStartPadding, "pvr-start-padding", 0, "0 to 86400 seconds", From(0, 86400)},
        {P::PvrEndPadding, "pvr-end-padding", 0, "0 to 86400 seconds", From(0, 86400)},
        {P::TimeShiftMode, "time-shift-mode", 1, "0 to 3", From(0, 3)},
        {P::NoTitle, "no-title", "No title", shortText, IsShort},
        {P::NoSynopsis, "no-synopsis", "No description", shortText, IsShort},
        {P::ManualRecording, "manual-recording", "Manual recording", shortText, IsShort},
        {P::UiElements, "ui-elements", Json::arrayValue, "at most 100 numbers of elements, or none", AreUiElements},
        {P::Resolution, "resolution", "1920x1080", "720x576, 1280x720, 1920x1080, 3840x2160 or 7680x4320",
         IsResolution}};
    static_assert(std::size(all) == static_cast<size_t>(P::Count), "each preference has one rule");
    static const std::vector<Rule> rules(std::begin(all), std::end(all));
    return rules;
}

const Rule& RuleFor(Preference preference) {
    return *std::find_if(Rules().begin(), Rules().end(), [&](const Rule& r) { return r.preference == preference; });
}

const Rule& RuleNamed(const std::string& name) {
    for (const Rule& rule : Rules()) {
        if (rule.name == name) return rule;
    }
    const auto names = Preferences::Names();
    throw Refused("there is no preference \"" + Excerpt(name) + "\"" + DidYouMean(name, {names.begin(), names.end()}));
}

[[noreturn]] void Refuse(const Rule& rule) {
    throw Refused(std::string(rule.name) + " is " + rule.expected);
}

// Normalizes the type of a number, so that equal values compare equal.
Json::Value Integer(const Rule& rule, const Json::Value& value) {
    if (!value.isInt64()) Refuse(rule);
    return Json::Value(value.asInt64());
}

Json::Value Checked(const Rule& rule, const Json::Value& value) {
    Json::Value result = value;
    if (rule.initial.isInt64()) {
        result = Integer(rule, value);
    } else if (value.type() != rule.initial.type()) {
        Refuse(rule);
    } else if (value.isArray()) {
        if (value.size() > kMostListed) Refuse(rule);
        for (Json::Value& number : result) number = Integer(rule, number);
    }
    if (!rule.fits(result)) Refuse(rule);
    return result;
}

Json::Value NumberFrom(const Rule& rule, const std::string& text) {
    if (text.empty() || text.size() > 15 || !AllOf(text, '0', '9')) Refuse(rule);
    return Json::Value(static_cast<Json::Int64>(std::stoll(text)));
}

Json::Value ValueFrom(const Rule& rule, const std::string& text) {
    if (rule.initial.isString()) return text;
    if (rule.initial.isInt64()) return NumberFrom(rule, text);
    if (rule.initial.isBool()) {
        if (text != "on" && text != "off") Refuse(rule);
        return text == "on";
    }
    Json::Value list(Json::arrayValue);
    if (text == "none") return list;
    for (const std::string& part : Parts(text)) list.append(NumberFrom(rule, part));
    return list;
}

std::string TextFrom(const Json::Value& value) {
    if (value.isBool()) return value.asBool() ? "on" : "off";
    if (!value.isArray()) return value.asString();
    std::string text;
    for (const Json::Value& number : value) text += (text.empty() ? "" : ",") + number.asString();
    return text.empty() ? "none" : text;
}

}  // namespace

Preferences::Preferences(const StateStore& store, const std::vector<int>& networkIds) : mStore(store) {
    for (const Rule& rule : Rules()) mValues[rule.preference] = Checked(rule, rule.initial);
    for (const int id : networkIds) {
        Json::Value& ids = mValues[Preference::NetworkIds];
        if (ids.size() < kMostListed) ids.append(Json::Value(static_cast<Json::Int64>(id)));
    }
    mStore.Load(kDocument, [this](const Json::Value& document) { Take(document); });
}

// Throws before anything is changed.
void Preferences::Take(const Json::Value& document) {
    if (!document.isObject()) throw Refused("not an object");
    std::map<Preference, Json::Value> values = mValues;
    for (const std::string& name : document.getMemberNames()) {
        const Rule& rule = RuleNamed(name);
        values[rule.preference] = Checked(rule, document[name]);
    }
    mValues = std::move(values);
    mKept = document;
}

void Preferences::Set(Preference preference, Json::Value value) {
    const Rule& rule = RuleFor(preference);
    value = Checked(rule, value);
    Json::Value kept = mKept;
    kept[rule.name] = value;
    mStore.Save(kDocument, kept);
    mKept = std::move(kept);
    if (mValues[preference] == value) return;
    mValues[preference] = std::move(value);
    changed.Notify(preference);
}

void Preferences::SetFromText(const std::string& name, const std::string& text) {
    const Rule& rule = RuleNamed(name);
    Set(rule.preference, ValueFrom(rule, text));
}

std::string Preferences::AsText(const std::string& name) const {
    return TextFrom(Get(RuleNamed(name).preference));
}

std::vector<std::string> Preferences::Names() {
    std::vector<std::string> names;
    for (const Rule& rule : Rules()) names.push_back(rule.name);
    return names;
}

}  // namespace hbbtv::sim
