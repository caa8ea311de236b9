// Times as XMLTV writes them: YYYYMMDDhhmmss, without what is zero at the end, and a time zone behind a blank.
#pragma once

#include <ctime>
#include <string_view>

namespace hbbtv::sim {

// UTC. Throws std::invalid_argument with what is wrong, as the end of a sentence that begins with the text. Times
// without a zone are UTC.
std::time_t ReadXmltvTime(std::string_view text);

}  // namespace hbbtv::sim
