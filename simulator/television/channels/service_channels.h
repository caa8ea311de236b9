// The channels of the line-up's services: one per service, shared by all families, with a ccid that is the same in
// every run.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "television/channels/channel.h"

namespace hbbtv::sim {

// "ccid:" and onid, tsid and sid, or the address of an IP service.
std::string CcidOf(const Service& service);

// "dvb://1.3fb.283d": onid, tsid and sid, hexadecimal. Of a broadcast service.
std::string DvbUrl(const Service& service);

class ServiceChannels {
  public:
    explicit ServiceChannels(const LineUp& lineUp);

    std::shared_ptr<Channel> Of(const std::shared_ptr<const Service>& service) const;

    // Returns null if no service has this ccid.
    std::shared_ptr<Channel> WithCcid(const std::string& ccid) const;

    // Returns null if no IP service has this address.
    std::shared_ptr<Channel> WithUri(const std::string& uri) const;

    // The channels of the listed services, in the order of the line-up.
    const ChannelVector& Listed() const { return mListed; }

  private:
    ChannelVector mListed;
    std::unordered_map<const Service*, std::shared_ptr<Channel>> mOfService;
    std::unordered_map<std::string, std::shared_ptr<Channel>> mByCcid;
};

}  // namespace hbbtv::sim
