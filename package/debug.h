// HIDL's debug of a service, as `lshal debug` calls it on a television.
#pragma once

#include <sys/types.h>

#include <set>
#include <string>
#include <vector>

#include "package/caller.h"

namespace hbbtv {

// Returns what the service writes for these options. Throws Failure(kTimeout) if it does not end within the limit,
// Failure(kPeerLost) if the call fails, or Interrupted.
std::string Debug(const ServiceCaller& service, const std::vector<std::string>& options, Milliseconds limit);

// Calls debug with a descriptor that the service may keep, and waits for the call. Throws as above.
void PassForDebug(const ServiceCaller& service, int fd, const std::vector<std::string>& options, Milliseconds limit);

// Returns the processes that have registered callbacks with the service; none if it is an older one, which does not
// report them. Throws as above.
std::set<pid_t> ClientsOf(const ServiceCaller& service, Milliseconds limit);

// Returns a caller of the first interface that a process has registered. Throws Failure(kUnavailable).
ServiceCaller AnyService(Milliseconds limit);

}  // namespace hbbtv
