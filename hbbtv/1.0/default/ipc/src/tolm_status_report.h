// What the service is doing, for people and for programs: all EndpointStatus objects by family, and the limits.
#pragma once

#include <json/json.h>

#include <string>
#include <vector>

#include "ipc/src/tolm_family.h"

namespace tolm {

// Returns the family of an interface, such as IChannel, or null.
const Family* FindFamily(const std::string& interface);

// Returns the report of these families as a document. Never waits for what a family is doing.
Json::Value StatusReport(const std::vector<const Family*>& families);

// Returns the same as lines of text.
std::string StatusText(const Json::Value& report);

}  // namespace tolm
