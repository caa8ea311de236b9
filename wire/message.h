// Builds messages of the wire from named values, as protocol/ defines their members.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "wire/protocol.h"
#include "wire/type.h"

namespace hbbtv {

// Returns the arguments of a request or an event: its members, except counts, which follow from lists. A member that is
// repeated under numbered keys, or as columns of one string, is one argument whose value is a list.
std::vector<Parameter> WireArguments(const Json::Value& members);

// Returns the key of a member that is repeated under numbered keys, from 0.
std::string NumberedKey(const Json::Value& member, Json::ArrayIndex number);

// Adds the members to the message that `values`, an object by argument name, has values for. A handle becomes a string,
// a list becomes numbered members. Values of another type, and those of other names, are added as they are:
// CheckRequest() and CheckEvent() find them.
void AddMembers(const Json::Value& members, const Json::Value& values, Json::Value& message);

// Returns the request of a family with its envelope: "type" and "method" (or "t").
Json::Value MakeRequest(const WireFamily& family, const Json::Value& operation, const Json::Value& values);

// Returns the event of a family with its envelope; and the members of an event, including those of the envelope.
Json::Value MakeEvent(const WireFamily& family, const Json::Value& event, const Json::Value& values);
Json::Value EventMembers(const WireFamily& family, const Json::Value& event);

// Returns the payload as the library writes it.
std::string WireText(const Json::Value& message);

}  // namespace hbbtv
