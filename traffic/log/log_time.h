// The times of a log as those of a recording: a log has neither a year nor a zone, and its clock may be set meanwhile.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "common/time_stamp.h"
#include "traffic/log/log_line.h"

namespace hbbtv::traffic {

class LogClock {
  public:
    // `zone` is that of times without one. Without a year, the latest one whose first line is not in the future.
    LogClock(const std::string& zone, std::optional<int> year) : mZone(zone), mYear(year) {}

    // Returns the time of a line; the one before it if it has none. To be called for each line in its order. The
    // monotonic clock begins with the first line, and continues if the wall clock is set back.
    TimeStamp Of(const std::optional<LogTime>& time);

    // Returns the zone of the last line.
    const std::string& Zone() const { return mZone; }

  private:
    uint64_t WallOf(const LogTime& time);

    std::string mZone;
    std::optional<int> mYear;
    int mLastMonth = 0;
    bool mStarted = false;
    uint64_t mLastWall = 0;
    uint64_t mMonotonic = 0;
};

}  // namespace hbbtv::traffic
