// Requests to programmes: what is broadcast of them, what clients set, and their descriptors.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeProgrammeFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
