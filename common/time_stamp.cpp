#include "common/time_stamp.h"

#include <cstdio>
#include <ctime>

namespace hbbtv {

namespace {

uint64_t Microseconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1000000 + static_cast<uint64_t>(now.tv_nsec) / 1000;
}

std::string WallClock(uint64_t microseconds) {
    const time_t seconds = static_cast<time_t>(microseconds / 1000000);
    tm parts{};
    gmtime_r(&seconds, &parts);
    char day[40];
    std::strftime(day, sizeof(day), "%Y-%m-%dT%H:%M:%S", &parts);
    char text[64];
    std::snprintf(text, sizeof(text), "%s.%06uZ", day, static_cast<unsigned>(microseconds % 1000000));
    return text;
}

std::string Seconds(uint64_t microseconds) {
    char text[40];
    std::snprintf(text, sizeof(text), "%llu.%06u", static_cast<unsigned long long>(microseconds / 1000000),
                  static_cast<unsigned>(microseconds % 1000000));
    return text;
}

}  // namespace

TimeStamp::TimeStamp() : mWall(Microseconds(CLOCK_REALTIME)), mMonotonic(Microseconds(CLOCK_MONOTONIC)) {}

std::string TimeStamp::Text() const {
    return WallClock(mWall) + "  " + Seconds(mMonotonic);
}

void TimeStamp::AddTo(Json::Value& line) const {
    line["wall_us"] = static_cast<Json::UInt64>(mWall);
    line["monotonic_us"] = static_cast<Json::UInt64>(mMonotonic);
}

std::string LocalZone() {
    const time_t now = std::time(nullptr);
    tm parts{};
    localtime_r(&now, &parts);
    char zone[16];
    std::strftime(zone, sizeof(zone), "%z", &parts);
    return std::string(zone).insert(3, ":");
}

}  // namespace hbbtv
