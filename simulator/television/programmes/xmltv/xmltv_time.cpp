#include "television/programmes/xmltv/xmltv_time.h"

#include <map>
#include <stdexcept>

#include "television/programmes/programme.h"
#include "text/text.h"

namespace hbbtv::sim {

namespace {

constexpr std::time_t kMinute = 60;
constexpr std::time_t kHour = 60 * kMinute;
constexpr std::time_t kDay = 24 * kHour;

// Summer time has its own names, so each name is one offset. In hours.
const std::map<std::string_view, int> kZones{
    {"", 0},     {"UTC", 0},  {"UT", 0},   {"GMT", 0},  {"Z", 0},    {"WET", 0},  {"BST", 1},  {"WEST", 1}, {"CET", 1},
    {"MET", 1},  {"CEST", 2}, {"MEST", 2}, {"EET", 2},  {"EEST", 3}, {"MSK", 3},  {"AST", -4}, {"ADT", -3}, {"EST", -5},
    {"EDT", -4}, {"CST", -6}, {"CDT", -5}, {"MST", -7}, {"MDT", -6}, {"PST", -8}, {"PDT", -7}};

bool IsLeap(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysIn(int year, int month) {
    static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

std::time_t DaysBefore(int year, int month) {
    std::time_t days = 0;
    for (int y = 1970; y < year; ++y) days += IsLeap(y) ? 366 : 365;
    for (int m = 1; m < month; ++m) days += DaysIn(year, m);
    return days;
}

// Two digits of the string, or 0 after its end.
int Two(std::string_view digits, size_t at) {
    return at < digits.size() ? static_cast<int>(*ReadNumber(digits.substr(at, 2), 10, 99)) : 0;
}

std::time_t Offset(std::string_view zone) {
    const bool number = zone.size() == 5 && (zone[0] == '+' || zone[0] == '-');
    if (!number) {
        const auto named = kZones.find(zone);
        if (named == kZones.end()) throw std::invalid_argument("has a time zone that is not known");
        return named->second * kHour;
    }
    const auto hours = ReadNumber(zone.substr(1, 2), 10, 14);
    const auto minutes = ReadNumber(zone.substr(3, 2), 10, 59);
    if (!hours || !minutes) throw std::invalid_argument("has a time zone that is not known");
    const std::time_t offset = *hours * kHour + *minutes * kMinute;
    return zone[0] == '-' ? -offset : offset;
}

}  // namespace

std::time_t ReadXmltvTime(std::string_view text) {
    text = Trimmed(text);
    const std::string_view digits = text.substr(0, text.find_first_not_of("0123456789"));
    if (digits.size() < 8 || digits.size() > 14 || digits.size() % 2 != 0) {
        throw std::invalid_argument("is not a time like 20260131201500 +0100");
    }
    const int year = Two(digits, 0) * 100 + Two(digits, 2);
    const int month = Two(digits, 4);
    const int day = Two(digits, 6);
    const int hour = Two(digits, 8);
    const int minute = Two(digits, 10);
    const int second = Two(digits, 12);
    if (year < 1970 || year > 2038) throw std::invalid_argument("is not within the years 1970 to 2038");
    const bool date = month >= 1 && month <= 12 && day >= 1 && day <= DaysIn(year, month);
    if (!date || hour > 23 || minute > 59 || second > 59)
        throw std::invalid_argument("is not a date and time that exists");
    const std::time_t local = (DaysBefore(year, month) + day - 1) * kDay + hour * kHour + minute * kMinute + second;
    const std::time_t time = local - Offset(Trimmed(text.substr(digits.size())));
    if (time < 0 || time > kLastTime) throw std::invalid_argument("is not within the years 1970 to 2038");
    return time;
}

}  // namespace hbbtv::sim
