// The tab manager's requests: what the browser tells about its tabs, and the commands for them.
#pragma once

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeMtmFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
