// The AV control object of the browser: the components that it tells of, and the selections that the viewer makes.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeAvControlFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
