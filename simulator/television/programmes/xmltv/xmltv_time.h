// Times in XMLTV: YYYYMMDDhhmmss, possibly without trailing zero fields, and a time zone after a space.
#pragma once

#include <ctime>
#include <string_view>

namespace hbbtv::sim {

// Returns UTC. Throws std::invalid_argument with a reason that follows the string in a message. Times without a zone
// are UTC.
std::time_t ReadXmltvTime(std::string_view text);

}  // namespace hbbtv::sim
