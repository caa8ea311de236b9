// What hbbtvctl finds out about the service by asking it. A build without HIDL cannot ask (commands/without_hidl.cpp).
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/duration.h"
#include "service/check.h"

namespace hbbtv::ctl {

// Returns the interfaces that a service implements, and whether each is registered; nothing in a build without HIDL.
// Throws Failure(kTimeout).
std::optional<std::vector<std::pair<std::string, bool>>> RegisteredInterfaces(Milliseconds limit);

// Returns the checks of `doctor` that ask the service, each within the time limit.
Checks CheckService(Milliseconds limit);

}  // namespace hbbtv::ctl
