#include "ipc/src/tolm_json_small_numbers.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace tolm {

namespace {

// Without a negative exponent, only a long row of zeros makes a number that small.
constexpr size_t kShortestWithExponent = 6;  // 1e-308
constexpr size_t kShortestWithout = 309;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Returns the end of the number that a word begins with, as jsoncpp finds it.
const char* EndOfNumber(const char* c, const char* end) {
    if (c != end && *c == '-') ++c;
    c = std::find_if_not(c, end, IsDigit);
    if (c != end && *c == '.') c = std::find_if_not(c + 1, end, IsDigit);
    if (c == end || (*c != 'e' && *c != 'E')) return c;
    if (++c != end && (*c == '+' || *c == '-')) ++c;
    return std::find_if_not(c, end, IsDigit);
}

bool MayBeSmall(const char* word, size_t size) {
    if (size < kShortestWithExponent || (*word != '-' && !IsDigit(*word))) return false;
    return size >= kShortestWithout || memchr(word, 'e', size) != nullptr || memchr(word, 'E', size) != nullptr;
}

// Returns strtod()'s result if the number is one, and too small.
std::optional<double> ReadSmall(const std::string& number) {
    char* end = nullptr;
    const int savedErrno = errno;
    errno = 0;
    const double value = strtod(number.c_str(), &end);
    const bool outOfRange = errno == ERANGE;
    errno = savedErrno;
    if (!outOfRange || value <= -1 || value >= 1 || end != number.c_str() + number.size()) return std::nullopt;
    return value;
}

}  // namespace

void SmallNumbers::Note(const char* text, const char* word, const char* wordEnd) {
    if (!MayBeSmall(word, static_cast<size_t>(wordEnd - word))) return;
    const std::string number(word, EndOfNumber(word, wordEnd));
    const std::optional<double> value = ReadSmall(number);
    if (value) mNumbers.push_back({static_cast<size_t>(word - text), number.size(), *value});
}

std::string SmallNumbers::Replaced(const char* text, const char* textEnd) const {
    std::string replaced(text, textEnd);
    for (const Number& number : mNumbers) {
        replaced.replace(number.offset, number.size, number.size, ' ');
        replaced.replace(number.offset, 3, "0.0");
    }
    return replaced;
}

void SmallNumbers::Restore(Json::Value& document) const {
    if (document.isArray() || document.isObject()) {
        for (Json::Value& element : document) Restore(element);
        return;
    }
    const size_t offset = static_cast<size_t>(document.getOffsetStart());
    const auto found = std::lower_bound(mNumbers.begin(), mNumbers.end(), offset,
                                        [](const Number& number, size_t wanted) { return number.offset < wanted; });
    if (found == mNumbers.end() || found->offset != offset) return;
    Json::Value number(found->value);
    document.swapPayload(number);
}

}  // namespace tolm
