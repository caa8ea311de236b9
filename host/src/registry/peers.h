// The sessions that this process has opened: one per peer process, shared by all users of its services, and open as
// long as the peer runs.
#pragma once

#include <memory>
#include <string>

#include "connection/session.h"
#include "registry/service_directory.h"

namespace android::hardware::host {

// Returns the session to a socket, or null if no process listens on it.
std::shared_ptr<Session> SessionTo(const ServiceDirectory& directory, const std::string& socketName);

}  // namespace android::hardware::host
