// Made-up programmes for every service and every time, always the same for the same seed: nothing is stored, a day's
// programmes follow from the service and the date.
#pragma once

#include <cstdint>
#include <ctime>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "platform/line_up.h"

namespace hbbtv::sim {

struct Programme {
    std::shared_ptr<const Service> service;
    int eventId = 0;  // unique within a service's day
    std::string name;
    std::string description;
    std::string longDescription;
    std::string genre;
    std::time_t start = 0;  // UTC
    int duration = 0;       // seconds
};

using ProgrammeList = std::vector<std::shared_ptr<Programme>>;

class Schedule {
  public:
    explicit Schedule(uint32_t seed) : mSeed(seed) {}

    // The programme that runs at that time, and the one behind it.
    ProgrammeList NowAndNext(const std::shared_ptr<const Service>& service, std::time_t time);

    // Those that run at any time from `from` on and begin before `to`, in order.
    ProgrammeList Between(const std::shared_ptr<const Service>& service, std::time_t from, std::time_t to);

  private:
    const ProgrammeList& Day(const std::shared_ptr<const Service>& service, std::time_t day);
    ProgrammeList MakeDay(const std::shared_ptr<const Service>& service, std::time_t day) const;

    uint32_t mSeed;
    std::map<std::tuple<int, int, int, std::string, std::time_t>, ProgrammeList> mDays;
};

}  // namespace hbbtv::sim
