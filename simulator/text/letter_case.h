// Case-insensitive search.
#pragma once

#include <string>

namespace hbbtv::sim {

// Returns UTF-8 with Latin, Greek and Cyrillic letters in lower case. Anything else is unchanged, also invalid UTF-8.
std::string SmallLetters(const std::string& text);

// Returns whether the string contains `small`, which is in lower case.
bool Contains(const std::string& text, const std::string& small);

}  // namespace hbbtv::sim
