// The list of families: see families.h.
#include "families/families.h"

#include "families/application_manager/application_manager_family.h"
#include "families/application_private_data/application_private_data_family.h"
#include "families/av_component/av_component_family.h"
#include "families/av_control/av_control_family.h"
#include "families/capabilities/capabilities_family.h"
#include "families/channel/channel_family.h"
#include "families/channel_config/channel_config_family.h"
#include "families/channel_list/channel_list_family.h"
#include "families/configuration/configuration_family.h"
#include "families/dsmcc/dsmcc_family.h"
#include "families/favourite_list/favourite_list_family.h"
#include "families/favourite_list_collection/favourite_list_collection_family.h"
#include "families/local_system/local_system_family.h"
#include "families/mtm/mtm_family.h"
#include "families/parental_control_manager/parental_control_manager_family.h"
#include "families/programme/programme_family.h"
#include "families/search_manager/search_manager_family.h"
#include "families/video_broadcast/video_broadcast_family.h"

namespace hbbtv::sim {

std::vector<std::unique_ptr<Family>> MakeFamilies(const FamilySetup& setup) {
    std::vector<std::unique_ptr<Family>> families;
    families.push_back(MakeApplicationManagerFamily(setup));
    families.push_back(MakeApplicationPrivateDataFamily(setup));
    families.push_back(MakeAvComponentFamily(setup));
    families.push_back(MakeAvControlFamily(setup));
    families.push_back(MakeCapabilitiesFamily(setup));
    families.push_back(MakeChannelFamily(setup));
    families.push_back(MakeChannelConfigFamily(setup));
    families.push_back(MakeChannelListFamily(setup));
    families.push_back(MakeConfigurationFamily(setup));
    families.push_back(MakeDsmccFamily(setup));
    families.push_back(MakeFavouriteListFamily(setup));
    families.push_back(MakeFavouriteListCollectionFamily(setup));
    families.push_back(MakeLocalSystemFamily(setup));
    families.push_back(MakeMtmFamily(setup));
    families.push_back(MakeParentalControlManagerFamily(setup));
    families.push_back(MakeProgrammeFamily(setup));
    families.push_back(MakeSearchManagerFamily(setup));
    families.push_back(MakeVideoBroadcastFamily(setup));
    return families;
}

}  // namespace hbbtv::sim
