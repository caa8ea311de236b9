// Tells handles of platform objects from other integers. On the wire handles are strings, so protocol/ names them.
#pragma once

#include "package/description.h"

namespace hbbtv {

// Returns whether an argument or a result of a method is a handle.
bool IsHandle(const Parameter& parameter);

}  // namespace hbbtv
