// Times that somebody waits.
#pragma once

#include <chrono>
#include <string>

namespace hbbtv {

using Milliseconds = std::chrono::milliseconds;

// "2 s" for whole seconds, otherwise "300 ms".
std::string InWords(Milliseconds time);

}  // namespace hbbtv
