// A channel as clients see it: a service of the line-up, or one that a client created from numbers.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "television/line_up/line_up.h"

namespace hbbtv::sim {

// In the latter case `service` is null: the numbers do not name a service on air.
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

    // Values that clients may change. They start as in the line-up; changes last as long as the simulator runs.
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

    // Whether the channel can be seen, given authorization and PIN.
    bool CanBePresented() const { return service && service->received && service->access != Access::Scrambled; }
};

using ChannelVector = std::vector<std::shared_ptr<Channel>>;

}  // namespace hbbtv::sim
