// The shared television: see tv.h.
#include "platform/tv.h"

namespace hbbtv::sim {

namespace {

// Reception by the same aerial or cable: the second generations of the standards need no other one.
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

bool IsIp(int idType) {
    return idType == static_cast<int>(IdType::IptvSds) || idType == static_cast<int>(IdType::IptvUri);
}

bool SameMedium(int idType, const Service& service) {
    const bool any = idType == static_cast<int>(IdType::DvbSiDirect);
    return any || Medium(idType) == Medium(static_cast<int>(service.network->delivery));
}

}  // namespace

void Tuner::Set(std::shared_ptr<Channel> channel) {
    if (channel == mOn) return;
    mOn = std::move(channel);
    for (const auto& onChange : mWatchers) onChange();
}

void Tuner::Use(const void* user, std::shared_ptr<Channel> channel) {
    mUser = user;
    mLatest = user;
    Set(std::move(channel));
}

void Tuner::Leave(const void* user) {
    if (mUser == user) mUser = nullptr;
}

void Tuner::Forget(const void* user) {
    Leave(user);
    if (mLatest == user) mLatest = nullptr;
}

Tv::Tv(LineUp theLineUp, std::optional<uint32_t> seed)
    : lineUp(std::move(theLineUp)),
      schedule(seed.value_or(0)),
      handleSource(seed),
      channels(handleSource),
      components(handleSource),
      componentLists(handleSource),
      programmes(handleSource),
      programmeLists(handleSource) {
    tuner.Set(ChannelOf(lineUp.First()));
}

std::shared_ptr<Channel> Tv::ChannelOf(const std::shared_ptr<const Service>& service) {
    std::shared_ptr<Channel>& channel = mChannelOfService[service.get()];
    if (!channel) {
        channel = std::make_shared<Channel>();
        channel->idType = static_cast<int>(service->network->delivery);
        channel->onid = service->onid;
        channel->tsid = service->tsid;
        channel->sid = service->sid;
        channel->service = service;
    }
    return channel;
}

std::shared_ptr<Channel> Tv::MakeChannel(Channel numbers) {
    const auto service = IsIp(numbers.idType) ? nullptr : lineUp.Find(numbers.onid, numbers.tsid, numbers.sid);
    if (service && SameMedium(numbers.idType, *service)) return ChannelOf(service);
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
    if (IsIp(channel.idType)) return ChannelError::CannotResolveUri;
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
