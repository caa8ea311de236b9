// The family of the files of the object carousel: what was asked for, what has come, and the events that tell of it.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeDsmccFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
