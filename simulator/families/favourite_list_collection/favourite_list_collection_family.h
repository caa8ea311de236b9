// The favourite list collection family: which favourite lists there are, and which is in use.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeFavouriteListCollectionFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
