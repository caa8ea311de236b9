// What `hbbtvctl doctor` finds out about and from a relay in the directory of the sockets.
#pragma once

#include <string>

#include "service/check.h"

namespace hbbtv::ctl {

// Restores the sockets that a killed relay has left. Returns a check for that, or for a relay that runs, and one for
// each request that has been open for a second; none without a relay.
Checks CheckRelay(const std::string& directory);

// Returns where the process of a socket is reached: behind the relay, if there is one. Connecting there is not seen by
// the relay.
std::string PathOfOwner(const std::string& path);

}  // namespace hbbtv::ctl
