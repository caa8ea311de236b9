// Signalling of an application in an XML file, as far as the television reads it: where the application is.
#pragma once

#include <optional>
#include <string>

namespace hbbtv::sim {

// The text of the first element URLBase followed by that of the first applicationLocation (ETSI TS 102 809), whatever
// their namespace prefix. Nothing when the file names no location.
std::optional<std::string> LocationIn(const std::string& xml);

}  // namespace hbbtv::sim
