// A channel as clients know it: a service of the line-up, or what a client made from numbers.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "television/line_up/line_up.h"

namespace hbbtv::sim {

// In the latter case `service` is null: the numbers name nothing that is on air.
struct Channel {
    int idType = 0;
    int onid = 0;
    int tsid = 0;
    int sid = 0;
    int sourceId = 0;
    std::string dsd;
    std::string ipBroadcastId;
    std::shared_ptr<const Service> service;
    std::string ccid;

    // What clients may change. It begins as the line-up has it and stays changed for as long as the simulator runs.
    std::string name;
    std::optional<std::string> longName;  // the name without one
    std::string description;
    std::vector<std::string> genres;
    std::string logoUrl;
    bool hidden = false;

    bool OverIp() const { return IsIp(static_cast<IdType>(idType)); }
    int Number() const { return service ? service->number : 0; }
    int Nid() const { return service ? service->network->networkId : 0; }
    ChannelType Type() const { return service ? service->type : ChannelType::Other; }

    // By the parents.
    bool Blocked() const { return service && service->access == Access::Locked; }

    // Whether somebody who has the right and the PIN sees a picture.
    bool CanBePresented() const { return service && service->received && service->access != Access::Scrambled; }
};

using ChannelVector = std::vector<std::shared_ptr<Channel>>;

}  // namespace hbbtv::sim
