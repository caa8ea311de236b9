// What `hbbtvctl doctor` finds in the status of the service, and about the processes that serve.
#pragma once

#include "common/duration.h"
#include "service/check.h"

namespace hbbtv::ctl {

// Returns a check for each problem; none without a service. TMPDIR must be set. Does not throw.
Checks FindTrouble(Milliseconds limit);

}  // namespace hbbtv::ctl
