// All families that the simulator serves. To add one, add a line to all_families.cpp and a file to families/.
#pragma once

#include <memory>
#include <vector>

#include "family/family_setup.h"

namespace hbbtv::sim {

std::vector<std::unique_ptr<Family>> MakeFamilies(const FamilySetup& setup);

}  // namespace hbbtv::sim
