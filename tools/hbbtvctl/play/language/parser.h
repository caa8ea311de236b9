// From the text of a play to its statements. Everything that can be known before it runs is checked here: names,
// methods, operations, events, the number of arguments and the types of those that are constant.
#pragma once

#include <set>
#include <string>

#include "play/language/script.h"

namespace hbbtv::ctl {

// `names` are known from the beginning, without their "$". Throws Failure(kUsage) that begins with "FILE:LINE:COLUMN:
// ".
Script ParseScript(const std::string& file, const std::string& text, const std::set<std::string>& names);

}  // namespace hbbtv::ctl
