// The capabilities family: what the television can do.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeCapabilitiesFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
