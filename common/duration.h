// Durations as people write and read them.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace hbbtv {

using Milliseconds = std::chrono::milliseconds;

// Parses "300ms", "2s", or plain milliseconds. Returns nothing for any other string and for more than a day.
std::optional<Milliseconds> ParseDuration(const std::string& text);

// Returns the message about a string that ParseDuration() does not take, or "" for one that it takes.
std::string CheckDuration(const std::string& text);

// Returns "2 s" for whole seconds, otherwise "300 ms".
std::string FormatDuration(Milliseconds duration);

}  // namespace hbbtv
