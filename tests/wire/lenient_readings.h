// What a reader of the wire makes of a member that is not of the type it expects.
#pragma once

#include <string>
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
std::string Show(int value);
std::string Show(unsigned value);
std::string Show(unsigned long value);
std::string Show(long value);
std::string Show(unsigned long long value);
std::string Show(long long value);
std::string Show(bool value);
std::string Show(double value);
std::string Show(const void* value);
std::string Show(const std::string& value);                        // in quotes, a zero byte as \0
std::string Show(const std::vector<int>& values);                  // [1 2 3]
std::string Show(const std::vector<std::pair<int, int>>& values);  // [1/2 3/4]

}  // namespace hbbtv::test
