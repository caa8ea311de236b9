// When something happened, on both clocks.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>

namespace hbbtv {

class TimeStamp {
  public:
    // The present time.
    TimeStamp();

    // Microseconds since 1970, and since the machine has started.
    TimeStamp(uint64_t wall, uint64_t monotonic) : mWall(wall), mMonotonic(monotonic) {}

    uint64_t Wall() const { return mWall; }
    uint64_t Monotonic() const { return mMonotonic; }

    // Returns the wall-clock time and the seconds of the monotonic clock.
    std::string Text() const;

    // Adds "wall_us" and "monotonic_us".
    void AddTo(Json::Value& line) const;

  private:
    uint64_t mWall;
    uint64_t mMonotonic;
};

// Returns what the machine's wall clock is ahead of UTC: "+01:00".
std::string LocalZone();

}  // namespace hbbtv
