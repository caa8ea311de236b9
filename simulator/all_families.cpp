#include "all_families.h"

namespace hbbtv::sim {

// Each is defined in the file or folder of that name in families/.
std::unique_ptr<Family> MakeApplicationManagerFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeApplicationPrivateDataFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeAvComponentFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeAvControlFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeCapabilitiesFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeChannelFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeChannelConfigFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeChannelListFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeConfigurationFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeDsmccFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeFavouriteListFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeFavouriteListCollectionFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeLocalSystemFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeMtmFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeParentalControlManagerFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeProgrammeFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeSearchManagerFamily(const FamilySetup& setup);
std::unique_ptr<Family> MakeVideoBroadcastFamily(const FamilySetup& setup);

std::vector<std::unique_ptr<Family>> MakeFamilies(const FamilySetup& setup) {
    constexpr std::unique_ptr<Family> (*kMake[])(const FamilySetup&) = {
        MakeApplicationManagerFamily,
        MakeApplicationPrivateDataFamily,
        MakeAvComponentFamily,
        MakeAvControlFamily,
        MakeCapabilitiesFamily,
        MakeChannelFamily,
        MakeChannelConfigFamily,
        MakeChannelListFamily,
        MakeConfigurationFamily,
        MakeDsmccFamily,
        MakeFavouriteListFamily,
        MakeFavouriteListCollectionFamily,
        MakeLocalSystemFamily,
        MakeMtmFamily,
        MakeParentalControlManagerFamily,
        MakeProgrammeFamily,
        MakeSearchManagerFamily,
        MakeVideoBroadcastFamily,
    };
    std::vector<std::unique_ptr<Family>> families;
    for (const auto& make : kMake) families.push_back(make(setup));
    return families;
}

}  // namespace hbbtv::sim
