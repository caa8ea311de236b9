// The configuration family: the viewer's preferences as applications may see and set them, and the events that tell of
// their changes.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeConfigurationFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
