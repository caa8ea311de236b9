// The members of an event as a receiver shows them.
#pragma once

#include <map>
#include <string>

#include "protocol_events.h"

namespace hbbtv::test {

// By key: the values as Show() returns them. A list is shown as the bytes that it stands for.
using ShownMembers = std::map<std::string, std::string>;

ShownMembers ShownOf(const ProtocolEvent& event);

}  // namespace hbbtv::test
