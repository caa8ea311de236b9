// Parental control: rating schemes, and the thresholds from which programmes are blocked. Changes are saved. The
// threshold of dvb-si is an age: the rating age of the preferences.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "television/device/preferences.h"
#include "television/device/rating.h"
#include "television/device/state_store.h"

namespace hbbtv::sim {

struct RatingScheme {
    std::string name;
    std::vector<std::string> values;    // from the mildest to the strictest
    std::string region;                 // of its ratings
    std::string icons;                  // URL of the values' icons; empty: none
    std::shared_ptr<Rating> threshold;  // null: nothing is blocked

    // Returns null if the scheme has no such value.
    std::shared_ptr<Rating> RatingOf(const std::string& value) const;

    // Empty if there is none.
    std::string IconOf(size_t index) const;
};

class ParentalControl {
  public:
    using Scheme = std::shared_ptr<RatingScheme>;

    // The preferences must outlive the object, which watches them.
    ParentalControl(const StateStore& store, Preferences& preferences);
    ParentalControl(const ParentalControl&) = delete;
    ParentalControl& operator=(const ParentalControl&) = delete;

    // The built-in schemes, then the added ones.
    const std::vector<Scheme>& Schemes() const { return mSchemes; }
    Scheme Find(const std::string& name) const;  // null without one

    // `values` is comma-separated. Returns an existing scheme with the same values. Throws Refused; then nothing has
    // changed.
    Scheme Add(const std::string& name, const std::string& values);

    // Blocks from this value on; empty: nothing. Throws Refused; then nothing has changed.
    void SetThreshold(const std::string& scheme, const std::string& value);

    bool Blocks(const Rating& rating) const;

  private:
    void Take(const Json::Value& document);
    void Save() const;
    void FollowRatingAge();

    const StateStore& mStore;
    Preferences& mPreferences;
    std::vector<Scheme> mSchemes;
};

}  // namespace hbbtv::sim
