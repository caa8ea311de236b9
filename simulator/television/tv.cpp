#include "television/tv.h"

#include <algorithm>

#include "television/programmes/schedule.h"

namespace hbbtv::sim {

namespace {

// Reception by the same aerial or cable: the second generations of the standards do not need another one.
int Medium(int idType) {
    switch (static_cast<IdType>(idType)) {
        case IdType::DvbC2:
            return static_cast<int>(IdType::DvbC);
        case IdType::DvbS2:
            return static_cast<int>(IdType::DvbS);
        case IdType::DvbT2:
            return static_cast<int>(IdType::DvbT);
        default:
            return idType;
    }
}

bool SameMedium(int idType, const Service& service) {
    const int delivery = static_cast<int>(service.network->delivery);
    const bool any = idType == static_cast<int>(IdType::DvbSiDirect) && !IsIp(service.network->delivery);
    return any || Medium(idType) == Medium(delivery);
}

std::vector<KeptFavourites> Brought(const LineUp& lineUp) {
    std::vector<KeptFavourites> lists;
    for (const FavouriteServices& list : lineUp.favouriteLists) {
        lists.push_back({list.id, list.name, {}});
        for (const auto& service : list.services) lists.back().ccids.push_back(CcidOf(*service));
    }
    return lists;
}

std::vector<int> TerrestrialNetworkIds(const LineUp& lineUp) {
    std::vector<int> ids;
    for (const auto& service : lineUp.services) {
        const Network& network = *service->network;
        const bool known = std::find(ids.begin(), ids.end(), network.networkId) != ids.end();
        if (Medium(static_cast<int>(network.delivery)) == static_cast<int>(IdType::DvbT) && !known) {
            ids.push_back(network.networkId);
        }
    }
    return ids;
}

}  // namespace

Tv::Tv(LineUp theLineUp, std::optional<uint32_t> seed, const StateStore& theState, std::unique_ptr<Guide> theGuide)
    : state(theState),
      lineUp(std::move(theLineUp)),
      serviceChannels(lineUp),
      channelList(serviceChannels.Listed()),
      favourites(std::make_shared<Favourites>(
          state, Brought(lineUp), [this](const std::string& ccid) { return serviceChannels.WithCcid(ccid); })),
      preferences(state, TerrestrialNetworkIds(lineUp)),
      guide(theGuide ? std::move(theGuide) : std::make_unique<Schedule>(seed.value_or(0))),
      parentalControl(state, preferences),
      device(state, seed),
      handleSource(seed),
      channels(handleSource),
      channelLists(handleSource),
      favouriteLists(handleSource),
      favouriteCollections(handleSource),
      components(handleSource),
      componentLists(handleSource),
      programmes(handleSource),
      programmeLists(handleSource),
      ratingCollections(handleSource) {
    tuner.Set(serviceChannels.Of(lineUp.First()));
}

std::shared_ptr<Channel> Tv::MakeChannel(Channel numbers) {
    if (numbers.OverIp()) {
        const auto known = serviceChannels.WithUri(numbers.ipBroadcastId);
        if (known && SameMedium(numbers.idType, *known->service)) return known;
    } else {
        const auto service = lineUp.Find(numbers.onid, numbers.tsid, numbers.sid);
        if (service && SameMedium(numbers.idType, *service)) return serviceChannels.Of(service);
    }
    numbers.ccid = "ccid:made-" + std::to_string(++mMadeChannels);
    return std::make_shared<Channel>(std::move(numbers));
}

bool Tv::Receives(int idType) const {
    for (const auto& service : lineUp.services) {
        if (SameMedium(idType, *service)) return true;
    }
    return false;
}

std::optional<ChannelError> Tv::Refusal(const Channel& channel) const {
    if (channel.service) return std::nullopt;
    if (channel.OverIp()) return ChannelError::CannotResolveUri;
    if (!Receives(channel.idType)) return ChannelError::NotSupported;
    return channel.dsd.empty() ? ChannelError::UnknownChannel : ChannelError::NotInTransportStream;
}

std::optional<ChannelError> Tv::Obstacle(const Channel& channel) {
    if (!channel.service->received) return ChannelError::CannotTune;
    if (channel.service->access == Access::Scrambled) return ChannelError::Encrypted;
    if (channel.service->access == Access::Locked) return ChannelError::ParentalLock;
    return std::nullopt;
}

}  // namespace hbbtv::sim
