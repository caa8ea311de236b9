#include "common/duration.h"

#include <algorithm>

#include "common/text/quote.h"

namespace hbbtv {

namespace {

constexpr long long kLongest = 24LL * 60 * 60 * 1000;

}  // namespace

std::optional<Milliseconds> ParseDuration(const std::string& text) {
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::string unit = text.substr(digits);
    if (digits == 0 || digits > 9 || (unit != "" && unit != "ms" && unit != "s")) return std::nullopt;
    const long long number = std::stoll(text.substr(0, digits)) * (unit == "s" ? 1000 : 1);
    if (number > kLongest) return std::nullopt;
    return Milliseconds(number);
}

std::string CheckDuration(const std::string& text) {
    if (ParseDuration(text)) return "";
    return Quoted(text) + " is not a duration: write 300ms or 2s, at most one day";
}

std::string FormatDuration(Milliseconds duration) {
    if (duration.count() % 1000 == 0) return std::to_string(duration.count() / 1000) + " s";
    return std::to_string(duration.count()) + " ms";
}

}  // namespace hbbtv
