// Values of the package's types: from the words of a command line and from JSON, and back to words.
#pragma once

#include <json/value.h>

#include <stdexcept>
#include <string>

#include "wire/type.h"

namespace hbbtv {

// The text completes the sentence `argument "onid": ...`.
class BadValue : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// One word of the command line. Integers are decimal or, after 0x, hexadecimal; enumerators go by name or number; a
// vector is a JSON array, or its elements with commas between; a struct is a JSON object; a callback is "@listen" or
// "null". Throws BadValue.
Json::Value FromWord(const Type& type, const std::string& word);

// A value that came as JSON: enumerators by name or number, integers also as text ("0x1000"), the other types as they
// are. The result holds numbers only, of the right size. Throws BadValue.
Json::Value FromJsonValue(const Type& type, const Json::Value& value);

// For people. `handle`: an integer is shown in hexadecimal.
std::string ForPeople(const Type& type, const Json::Value& value, bool handle);

// For programs: as FromJsonValue takes it, enumerators by name where they have one unless `numbers`.
Json::Value ForPrograms(const Type& type, const Json::Value& value, bool numbers);

}  // namespace hbbtv
