// Values of the package's types: conversions from the words of a command line and from JSON, and back.
#pragma once

#include <json/value.h>

#include <stdexcept>
#include <string>

#include "wire/type.h"

namespace hbbtv {

// The message completes `argument "onid": ...`.
class BadValue : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Converts a word of the command line. Integers are decimal or, after 0x, hexadecimal; enumerators are names or
// numbers; a vector is a JSON array or a comma-separated list; a struct is a JSON object; a callback is "@listen" or
// "null". Throws BadValue.
Json::Value FromWord(const Type& type, const std::string& word);

// Converts a JSON value: enumerators are names or numbers, integers can be strings ("0x1000"). The result has numbers
// for both, checked to be in range. Throws BadValue.
Json::Value FromJsonValue(const Type& type, const Json::Value& value);

// Formats a value for people; an integer that is a `handle` is 0x and eight digits, a string of bytes as in a play.
std::string ForPeople(const Type& type, const Json::Value& value, bool handle);

// Returns a value as FromJsonValue() takes it. Enumerators are names if they have one, unless `numbers` is set. Since
// JSON has no bytes, those of a string of bytes are the characters 0 to 255.
Json::Value ForPrograms(const Type& type, const Json::Value& value, bool numbers);

}  // namespace hbbtv
