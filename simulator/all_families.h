// All families that the simulator serves. A new one is a line in all_families.cpp and a file in families/.
#pragma once

#include <memory>
#include <vector>

#include "family/family_setup.h"

namespace hbbtv::sim {

std::vector<std::unique_ptr<Family>> MakeFamilies(const FamilySetup& setup);

}  // namespace hbbtv::sim
