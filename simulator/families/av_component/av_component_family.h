// Requests to components of services and to those that clients describe.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeAvComponentFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
