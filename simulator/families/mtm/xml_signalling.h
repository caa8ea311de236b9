// The location of an application in an XML AIT.
#pragma once

#include <optional>
#include <string>

namespace hbbtv::sim {

// Returns the text of the first element URLBase followed by that of the first applicationLocation (ETSI TS 102 809),
// with any namespace prefix. Nothing if the file has no location.
std::optional<std::string> LocationIn(const std::string& xml);

}  // namespace hbbtv::sim
