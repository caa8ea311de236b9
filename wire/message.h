// Messages of the wire from named values, by what protocol/ says of their members, and back.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "wire/protocol.h"
#include "wire/type.h"

namespace hbbtv {

// The arguments of a request or an event: its members, without the counts that follow from others. A member that is
// repeated under numbered keys, or as columns of one text, is one argument whose value is a list.
std::vector<Parameter> WireArguments(const Json::Value& members);

// One member with the value of its argument, into the message. A handle becomes text, a list numbered members.
// `values` is by name; arguments that are missing there are left out of the message.
void AddMembers(const Json::Value& members, const Json::Value& values, Json::Value& message);

// A family's request: "type" and "method" (or "t") in front.
Json::Value MakeRequest(const WireFamily& family, const Json::Value& operation, const Json::Value& values);

// A family's event, and the arguments that it takes, those of the envelope included.
Json::Value MakeEvent(const WireFamily& family, const Json::Value& event, const Json::Value& values);
Json::Value EventMembers(const WireFamily& family, const Json::Value& event);

// As the library writes it.
std::string WireText(const Json::Value& message);

}  // namespace hbbtv
