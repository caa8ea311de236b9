// The local system family: what this television is, and what is enabled on it.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeLocalSystemFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
