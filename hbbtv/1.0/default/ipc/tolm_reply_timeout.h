// How long the library waits for the platform: TOLM_REPLY_TIMEOUT_MS in the environment of the process.
#pragma once

#include <chrono>

namespace tolm {

// Returns the time, or 0 to wait for ever: the variable is 0, absent, or not a number of milliseconds (an error line).
// The environment is read once.
std::chrono::milliseconds ReplyTimeout();

}  // namespace tolm
