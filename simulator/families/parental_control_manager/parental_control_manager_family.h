// The parental control manager family: rating schemes with their thresholds, ratings, and collections of ratings.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeParentalControlManagerFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
