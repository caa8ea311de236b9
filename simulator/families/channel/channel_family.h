// The channel family: what is known of a channel, and what clients may change of it.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeChannelFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
