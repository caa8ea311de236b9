// Letters without regard to their case, for searching.
#pragma once

#include <string>

namespace hbbtv::sim {

// UTF-8 with the Latin, Greek and Cyrillic capital letters made small. Anything else stays, also what is no UTF-8.
std::string SmallLetters(const std::string& text);

// Whether `small`, already of small letters, stands anywhere in the text.
bool Contains(const std::string& text, const std::string& small);

}  // namespace hbbtv::sim
