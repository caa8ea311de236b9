// How programmes are rated for minors, and from which rating on the parents block them: rating schemes with their
// thresholds. What is set or added lasts. The threshold of dvb-si is an age, and is the rating age of the preferences.
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
    std::vector<std::string> values;    // from the mildest on
    std::string region;                 // of its ratings
    std::string icons;                  // where those of the values are; empty: there are none
    std::shared_ptr<Rating> threshold;  // null: nothing is blocked

    // Null when the scheme has no such value.
    std::shared_ptr<Rating> RatingOf(const std::string& value) const;

    // Empty without one.
    std::string IconOf(size_t index) const;
};

class ParentalControl {
  public:
    using Scheme = std::shared_ptr<RatingScheme>;

    // The preferences live longer, and are watched.
    ParentalControl(const StateStore& store, Preferences& preferences);
    ParentalControl(const ParentalControl&) = delete;
    ParentalControl& operator=(const ParentalControl&) = delete;

    // Those of the television, and behind them those that were added.
    const std::vector<Scheme>& Schemes() const { return mSchemes; }
    Scheme Find(const std::string& name) const;  // null without one

    // The values with commas between them. A scheme that is there with the same values is the one. Throws Refused;
    // then nothing has changed.
    Scheme Add(const std::string& name, const std::string& values);

    // From this value on; empty: none is blocked. Throws Refused; then nothing has changed.
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
