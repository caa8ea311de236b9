// How two recordings differ, by operation.
#pragma once

#include <json/value.h>

#include <string>

#include "traffic/view/statistics.h"

namespace hbbtv::traffic {

// Return what only one of them has, and for the others how calls, errors and times have changed.
std::string DifferenceText(const Statistics& before, const Statistics& after);

// Returns "operations", each with "operation" and, for each side that has it, "before" and "after" with the numbers of
// Statistics::Json().
Json::Value DifferenceJson(const Statistics& before, const Statistics& after);

}  // namespace hbbtv::traffic
