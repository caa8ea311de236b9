// The list of families: see families.h.
#include "families/families.h"

#include "families/video_broadcast/video_broadcast_family.h"

namespace hbbtv::sim {

std::vector<std::unique_ptr<Family>> MakeFamilies(const FamilySetup& setup) {
    std::vector<std::unique_ptr<Family>> families;
    families.push_back(MakeVideoBroadcastFamily(setup));
    return families;
}

}  // namespace hbbtv::sim
