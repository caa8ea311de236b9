#include "core/time_text.h"

#include <algorithm>

namespace hbbtv::sim {

namespace {

constexpr long long kLongestTime = 24LL * 60 * 60 * 1000;

}  // namespace

std::optional<std::chrono::milliseconds> ReadTime(const std::string& text) {
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::string unit = text.substr(digits);
    if (digits == 0 || digits > 9 || (unit != "" && unit != "ms" && unit != "s")) return std::nullopt;
    const long long number = std::stoll(text.substr(0, digits)) * (unit == "s" ? 1000 : 1);
    if (number > kLongestTime) return std::nullopt;
    return std::chrono::milliseconds(number);
}

}  // namespace hbbtv::sim
