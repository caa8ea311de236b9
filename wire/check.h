// Compares messages of the wire with protocol/. Each function returns a sentence for each member that is not as
// defined: its key, what is wrong, and what is expected. An empty list means that the message is right.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "wire/protocol.h"

namespace hbbtv {

// The message must have all members and no others.
std::vector<std::string> CheckRequest(const WireFamily& family, const Json::Value& operation,
                                      const Json::Value& message);
std::vector<std::string> CheckEvent(const WireFamily& family, const Json::Value& event, const Json::Value& message);

// Other members are accepted, as the library ignores them. A reply with a "ret" other than 0 needs no more than that.
std::vector<std::string> CheckReply(const Json::Value& operation, const Json::Value& message);

}  // namespace hbbtv
