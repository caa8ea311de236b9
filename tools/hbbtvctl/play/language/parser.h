// Parses a play into statements, and checks what can be checked before it runs: names, methods, operations, events, the
// number of arguments and the types of constant ones.
#pragma once

#include <set>
#include <string>

#include "play/language/script.h"

namespace hbbtv::ctl {

// `names`, without their "$", are known from the start. Throws a Failure(kUsage) that begins with "FILE:LINE:COLUMN: ".
Script ParseScript(const std::string& file, const std::string& text, const std::set<std::string>& names);

}  // namespace hbbtv::ctl
