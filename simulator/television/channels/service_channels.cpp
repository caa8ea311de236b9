#include "television/channels/service_channels.h"

#include <cstdio>

namespace hbbtv::sim {

namespace {

std::shared_ptr<Channel> MakeChannel(const std::shared_ptr<const Service>& service) {
    auto channel = std::make_shared<Channel>();
    channel->idType = static_cast<int>(service->network->delivery);
    channel->onid = service->onid;
    channel->tsid = service->tsid;
    channel->sid = service->sid;
    channel->ipBroadcastId = service->uri;
    channel->service = service;
    channel->ccid = CcidOf(*service);
    channel->name = service->name;
    if (!service->longName.empty()) channel->longName = service->longName;
    channel->description = service->description;
    channel->genres = service->genres;
    channel->logoUrl = service->logoUrl;
    channel->hidden = service->hidden;
    return channel;
}

}  // namespace

std::string CcidOf(const Service& service) {
    if (!service.uri.empty()) return "ccid:" + service.uri;
    return "ccid:" + std::to_string(service.onid) + "." + std::to_string(service.tsid) + "." +
           std::to_string(service.sid);
}

std::string DvbUrl(const Service& service) {
    char text[40];
    std::snprintf(text, sizeof(text), "dvb://%x.%x.%x", static_cast<unsigned>(service.onid),
                  static_cast<unsigned>(service.tsid), static_cast<unsigned>(service.sid));
    return text;
}

ServiceChannels::ServiceChannels(const LineUp& lineUp) {
    for (const auto& service : lineUp.services) {
        const auto channel = MakeChannel(service);
        mOfService[service.get()] = channel;
        mByCcid.emplace(channel->ccid, channel);
        if (service->listed) mListed.push_back(channel);
    }
}

std::shared_ptr<Channel> ServiceChannels::Of(const std::shared_ptr<const Service>& service) const {
    const auto found = mOfService.find(service.get());
    return found == mOfService.end() ? nullptr : found->second;
}

std::shared_ptr<Channel> ServiceChannels::WithCcid(const std::string& ccid) const {
    const auto found = mByCcid.find(ccid);
    return found == mByCcid.end() ? nullptr : found->second;
}

std::shared_ptr<Channel> ServiceChannels::WithUri(const std::string& uri) const {
    const auto channel = uri.empty() ? nullptr : WithCcid("ccid:" + uri);
    return channel && channel->ipBroadcastId == uri ? channel : nullptr;
}

}  // namespace hbbtv::sim
