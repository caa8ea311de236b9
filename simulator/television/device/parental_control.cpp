#include "television/device/parental_control.h"

#include <algorithm>
#include <set>

#include "core/error.h"
#include "text/text.h"

namespace hbbtv::sim {

namespace {

const char* const kDocument = "parental_control";
constexpr size_t kMostSchemes = 100;
constexpr size_t kMostValues = 256;
constexpr size_t kLongestName = 256;

// The rating byte of DVB is the age minus 3, from 1 to 15 (EN 300 468).
std::vector<std::string> DvbAges() {
    std::vector<std::string> ages;
    for (int age = 4; age <= 18; ++age) ages.push_back(std::to_string(age));
    return ages;
}

// OIPF volumes 3 and 5.
std::vector<RatingScheme> OwnSchemes() {
    std::vector<RatingScheme> schemes{
        {kSchemeDvbSi, DvbAges(), "", "http://ratings.example/dvb/", nullptr},
        {kSchemeFsk, {"0", "6", "12", "16", "18"}, "DE", "http://ratings.example/fsk/", nullptr},
        {kSchemeMpaa, {"G", "PG", "PG-13", "R", "NC-17", "NR"}, "US", "http://ratings.example/mpaa/", nullptr}};
    schemes[1].threshold = schemes[1].RatingOf("18");
    schemes[2].threshold = schemes[2].RatingOf("NC-17");
    return schemes;
}

// Names are used in space-separated lists and in an XML document.
void CheckName(const std::string& name) {
    const auto bad = [](unsigned char c) { return c <= 0x20 || c >= 0x7f; };
    if (name.empty() || name.size() > kLongestName || std::any_of(name.begin(), name.end(), bad)) {
        throw Refused("the name of a scheme has 1 to 256 ASCII characters without spaces");
    }
}

void CheckValues(const std::vector<std::string>& values) {
    const std::set<std::string> different(values.begin(), values.end());
    if (different.count("") != 0) throw Refused("a value of a scheme is empty");
    if (different.size() != values.size()) throw Refused("a value of a scheme occurs twice");
    if (values.size() > kMostValues) throw Refused("a scheme has at most 256 values");
}

std::vector<std::string> ReadValues(const std::string& text) {
    std::vector<std::string> values;
    for (const std::string_view word : Split(text, ',')) values.emplace_back(Trimmed(word));
    CheckValues(values);
    return values;
}

using SchemeVector = std::vector<ParentalControl::Scheme>;

ParentalControl::Scheme FindIn(const SchemeVector& schemes, const std::string& name) {
    const auto found =
        std::find_if(schemes.begin(), schemes.end(), [&](const auto& scheme) { return scheme->name == name; });
    return found == schemes.end() ? nullptr : *found;
}

ParentalControl::Scheme MakeScheme(const SchemeVector& schemes, const std::string& name,
                                   std::vector<std::string> values) {
    CheckName(name);
    CheckValues(values);
    if (FindIn(schemes, name)) throw Refused("another scheme has this name");
    if (schemes.size() >= kMostSchemes) throw Refused("there are already 100 schemes");
    return std::make_shared<RatingScheme>(RatingScheme{name, std::move(values), "", "", nullptr});
}

std::shared_ptr<Rating> Threshold(const RatingScheme& scheme, const std::string& value) {
    const auto threshold = scheme.RatingOf(value);
    if (!threshold && !value.empty()) throw Refused("the scheme has no such rating");
    return threshold;
}

}  // namespace

std::shared_ptr<Rating> RatingScheme::RatingOf(const std::string& value) const {
    const auto found = std::find(values.begin(), values.end(), value);
    if (found == values.end()) return nullptr;
    const int number = name == kSchemeDvbSi ? std::stoi(value) : static_cast<int>(found - values.begin());
    return std::make_shared<Rating>(Rating{name, value, number, 0, region});
}

std::string RatingScheme::IconOf(size_t index) const {
    return icons.empty() ? "" : icons + values[index] + ".png";
}

ParentalControl::ParentalControl(const StateStore& store, Preferences& preferences)
    : mStore(store), mPreferences(preferences) {
    for (RatingScheme& scheme : OwnSchemes()) mSchemes.push_back(std::make_shared<RatingScheme>(std::move(scheme)));
    mStore.Load(kDocument, [this](const Json::Value& document) { Take(document); });
    FollowRatingAge();
    mPreferences.changed.Watch([this](Preference preference) {
        if (preference == Preference::RatingAge) FollowRatingAge();
    });
}

void ParentalControl::FollowRatingAge() {
    const Scheme ages = Find(kSchemeDvbSi);
    ages->threshold = ages->RatingOf(mPreferences.Get(Preference::RatingAge).asString());
}

// Throws before anything is changed.
void ParentalControl::Take(const Json::Value& document) {
    SchemeVector schemes = mSchemes;
    for (const Json::Value& added : ListIn(document, "schemes")) {
        std::vector<std::string> values;
        for (const Json::Value& value : ListIn(added, "values")) {
            if (!value.isString()) throw Refused("a value is not a string");
            values.push_back(value.asString());
        }
        schemes.push_back(MakeScheme(schemes, TextIn(added, "name"), std::move(values)));
    }
    std::vector<std::pair<Scheme, std::shared_ptr<Rating>>> thresholds;
    for (const Json::Value& kept : ListIn(document, "thresholds")) {
        const Scheme scheme = FindIn(schemes, TextIn(kept, "scheme"));
        if (!scheme) throw Refused("a threshold is for an unknown scheme");
        thresholds.emplace_back(scheme, Threshold(*scheme, TextIn(kept, "rating")));
    }
    for (const auto& [scheme, threshold] : thresholds) scheme->threshold = threshold;
    mSchemes = std::move(schemes);
}

void ParentalControl::Save() const {
    static const size_t own = OwnSchemes().size();
    Json::Value document;
    document["schemes"] = Json::Value(Json::arrayValue);
    document["thresholds"] = Json::Value(Json::arrayValue);
    for (size_t i = 0; i < mSchemes.size(); ++i) {
        const RatingScheme& scheme = *mSchemes[i];
        if (scheme.name != kSchemeDvbSi) {
            Json::Value threshold;
            threshold["scheme"] = scheme.name;
            threshold["rating"] = scheme.threshold ? scheme.threshold->name : "";
            document["thresholds"].append(threshold);
        }
        if (i < own) continue;
        Json::Value added;
        added["name"] = scheme.name;
        for (const std::string& value : scheme.values) added["values"].append(value);
        document["schemes"].append(added);
    }
    mStore.Save(kDocument, document);
}

ParentalControl::Scheme ParentalControl::Find(const std::string& name) const {
    return FindIn(mSchemes, name);
}

ParentalControl::Scheme ParentalControl::Add(const std::string& name, const std::string& values) {
    const std::vector<std::string> list = ReadValues(values);
    const Scheme known = Find(name);
    if (known && known->values == list) return known;
    mSchemes.push_back(MakeScheme(mSchemes, name, list));
    try {
        Save();
    } catch (...) {
        mSchemes.pop_back();
        throw;
    }
    return mSchemes.back();
}

void ParentalControl::SetThreshold(const std::string& schemeName, const std::string& value) {
    const Scheme scheme = Find(schemeName);
    if (!scheme) throw Refused("there is no such rating scheme");
    const auto threshold = Threshold(*scheme, value);
    if (schemeName == kSchemeDvbSi) return mPreferences.Set(Preference::RatingAge, threshold ? threshold->value : 0);
    const auto before = scheme->threshold;
    scheme->threshold = threshold;
    try {
        Save();
    } catch (...) {
        scheme->threshold = before;
        throw;
    }
}

bool ParentalControl::Blocks(const Rating& rating) const {
    const Scheme scheme = Find(rating.scheme);
    return scheme && scheme->threshold && rating.value >= scheme->threshold->value;
}

}  // namespace hbbtv::sim
