// Quoting of strings in messages.
#pragma once

#include <string>

namespace hbbtv {

// Returns the string in double quotes. Control characters are escaped as in JSON (\n, \u001b), so no string can
// disturb a terminal; a string that is not valid UTF-8 is escaped down to ASCII.
std::string Quoted(const std::string& text);

}  // namespace hbbtv
