// Which whole numbers are handles of platform objects: on the wire those are texts, so protocol/ knows.
#pragma once

#include "package/description.h"

namespace hbbtv {

// Of an argument or a result of a method.
bool IsHandle(const Parameter& parameter);

}  // namespace hbbtv
