// The family of what an application is told of the television it runs on.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeApplicationPrivateDataFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
