// The application manager's requests and events, the start of applications with their services, and the commands.
#pragma once

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeApplicationManagerFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
