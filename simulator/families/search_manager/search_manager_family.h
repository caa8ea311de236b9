// The search manager family: search managers, searches, queries and result sets, and the event that tells how a search
// goes on.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeSearchManagerFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
