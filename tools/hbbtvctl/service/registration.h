// Registrations of callback objects, of which most families have one at a time.
#pragma once

#include "common/duration.h"
#include "package/caller.h"

namespace hbbtv::ctl {

// Returns the argument that is a callback object, or null.
const Parameter* CallbackOf(const Method& method);

// Returns whether the method registers a callback object, such as RegisterCallback.
bool Registers(const Method& method);

// To be called before a callback object is registered with the service, which ends the events of another process that
// is registered, for good. With `takeOver`, reports that process; without, throws Failure(kUsage) if there is one.
// Throws the failures of Debug() as well.
void CheckOtherClients(const ServiceCaller& service, bool takeOver, Milliseconds limit);

}  // namespace hbbtv::ctl
