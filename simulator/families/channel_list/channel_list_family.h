// The channel list family: lists of channels, to be walked and searched.
#pragma once

#include <memory>

#include "families/families.h"

namespace hbbtv::sim {

std::unique_ptr<Family> MakeChannelListFamily(const FamilySetup& setup);

}  // namespace hbbtv::sim
