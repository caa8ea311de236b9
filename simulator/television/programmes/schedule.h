// Generated programmes for every service and time, the same for the same seed: a day's programmes depend on the service
// and the date.
#pragma once

#include <cstdint>
#include <map>
#include <tuple>

#include "television/programmes/guide.h"

namespace hbbtv::sim {

class Schedule : public Guide {
  public:
    explicit Schedule(uint32_t seed) : mSeed(seed) {}

    // Ends after two months at the latest, because the schedule is unlimited.
    void Walk(const std::shared_ptr<const Service>& service, TimeRange range, const Visitor& visit) override;

    // A broadcaster announces a week; yesterday is kept.
    TimeRange Known(std::time_t now) const override;

  private:
    using Day = std::shared_ptr<const ProgrammeList>;

    Day DayOf(const std::shared_ptr<const Service>& service, std::time_t day);
    Day MakeDay(const std::shared_ptr<const Service>& service, std::time_t day) const;
    void ForgetDays();

    uint32_t mSeed;
    std::map<std::tuple<int, int, int, std::string, std::time_t>, Day> mDays;
    size_t mMostDays = 4096;  // then unused ones are discarded; they can be generated again
};

}  // namespace hbbtv::sim
