// What a reader of the wire makes of a member that is not of the type it expects.
#pragma once

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace hbbtv::test {

struct Reading {
    const char* json;   // the member's value; empty when the member is missing
    const char* shown;  // what is read, as text (Show()); null when reading fails, which only pointers do
};

// For a type of the protocol files, or "flag", an int of which only zero matters: one reading for each kind of JSON
// value, and for the limits of the type. An unchanged pointer is shown as `unchanged`.
std::vector<Reading> ReadingsOf(const std::string& type, const char* unchanged);

// Values as text.
std::string Show(double value);
std::string Show(const void* value);
std::string Show(const std::string& value);  // in quotes, a zero byte as \0

template <typename T>
std::enable_if_t<std::is_integral_v<T>, std::string> Show(T value) {
    if constexpr (std::is_same_v<T, bool>) return value ? "true" : "false";
    return std::to_string(value);
}

template <typename T>
std::string Show(const std::pair<T, T>& values) {
    return Show(values.first) + "/" + Show(values.second);
}

template <typename T>
std::string Show(const std::vector<T>& values) {
    std::string text;
    for (const T& value : values) text += (text.empty() ? "" : " ") + Show(value);
    return "[" + text + "]";
}

}  // namespace hbbtv::test
