// When an event arrived.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>

namespace hbbtv::ctl {

class TimeStamp {
  public:
    // The present time.
    TimeStamp();

    // Returns the wall-clock time and the seconds of the monotonic clock.
    std::string Text() const;

    // Adds "wall_us" and "monotonic_us".
    void AddTo(Json::Value& line) const;

  private:
    uint64_t mWall;
    uint64_t mMonotonic;
};

}  // namespace hbbtv::ctl
