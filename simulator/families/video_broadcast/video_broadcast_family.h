// The video/broadcast family: its table of operations, each turned into a call of the object that it names.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeVideoBroadcastFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
