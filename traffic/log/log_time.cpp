#include "traffic/log/log_time.h"

#include <algorithm>
#include <ctime>

#include "traffic/view/line.h"

namespace hbbtv::traffic {

namespace {

constexpr uint64_t kDay = 86400ull * 1000000;

uint64_t Midnight(int year, const LogTime& time) {
    tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = time.month - 1;
    parts.tm_mday = time.day;
    return static_cast<uint64_t>(std::max<time_t>(timegm(&parts), 0)) * 1000000;
}

int LatestYear(const LogTime& time) {
    const uint64_t now = TimeStamp().Wall();
    const time_t seconds = static_cast<time_t>(now / 1000000);
    tm parts{};
    gmtime_r(&seconds, &parts);
    const int year = parts.tm_year + 1900;
    return Midnight(year, time) > now + kDay ? year - 1 : year;
}

}  // namespace

uint64_t LogClock::WallOf(const LogTime& time) {
    if (time.month == 0) return time.microseconds;
    if (!time.zone.empty()) mZone = time.zone;
    if (!mYear) mYear = LatestYear(time);
    if (mLastMonth == 12 && time.month == 1) ++*mYear;
    mLastMonth = time.month;
    const uint64_t local = Midnight(time.year != 0 ? time.year : *mYear, time) + time.microseconds;
    const int64_t offset = ZoneOffset(mZone);
    return offset > 0 && local < static_cast<uint64_t>(offset) ? 0 : local - static_cast<uint64_t>(offset);
}

TimeStamp LogClock::Of(const std::optional<LogTime>& time) {
    if (time) {
        const uint64_t wall = WallOf(*time);
        if (mStarted && wall > mLastWall) mMonotonic += wall - mLastWall;
        mStarted = true;
        mLastWall = wall;
    }
    return TimeStamp(mLastWall, mMonotonic);
}

}  // namespace hbbtv::traffic
