// Messages with a value for each member, as protocol/ defines them.
#pragma once

#include <json/value.h>

#include "wire/protocol.h"

namespace hbbtv::fuzz {

Json::Value UsualRequest(const WireFamily& family, const Json::Value& operation);
Json::Value UsualReply(const Json::Value& operation);

// The context of an event is 1.
Json::Value UsualEvent(const WireFamily& family, const Json::Value& event);

}  // namespace hbbtv::fuzz
