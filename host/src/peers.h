// The sessions that this process has opened to others: one per process, shared by everything here that uses its
// services, and open as long as the process lives.
#pragma once

#include <memory>
#include <string>

#include "service_directory.h"
#include "session.h"

namespace android {
namespace hardware {
namespace host {

// Null when nobody listens there.
std::shared_ptr<Session> SessionTo(const ServiceDirectory& directory, const std::string& socketName);

}  // namespace host
}  // namespace hardware
}  // namespace android
