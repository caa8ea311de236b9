// The favourite list family: one list of favourites, read and changed.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeFavouriteListFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
