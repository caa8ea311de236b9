// The channel configuration family: where the lists come from, which of them are in use, and the event that tells of a
// change.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeChannelConfigFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
