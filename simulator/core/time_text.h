// Times as people write them for the simulator: "300ms", "2s", or plain milliseconds.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace hbbtv::sim {

// Nothing when the text is no time, or one of more than a day.
std::optional<std::chrono::milliseconds> ReadTime(const std::string& text);

}  // namespace hbbtv::sim
