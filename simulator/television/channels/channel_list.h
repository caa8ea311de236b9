// An ordered list of channels, and ways to find one of them. The first search builds an index, a change drops it.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>

#include "television/channels/channel.h"

namespace hbbtv::sim {

class ChannelList {
  public:
    ChannelList() = default;
    explicit ChannelList(ChannelVector channels) : mChannels(std::move(channels)) {}

    const ChannelVector& Channels() const { return mChannels; }
    void Assign(ChannelVector channels);
    void Insert(size_t index, std::shared_ptr<Channel> channel);
    void Remove(size_t index);

    // Returns the first match, or null. An id is a ccid or an IP broadcast id.
    std::shared_ptr<Channel> WithId(const std::string& id) const;

    // A negative onid, tsid or nid matches every channel.
    std::shared_ptr<Channel> WithTriplet(int onid, int tsid, int sid, int nid) const;

    // 0 is not a source id, so it does not match.
    std::shared_ptr<Channel> WithSourceId(int sourceId) const;

    // Returns the channel's first position.
    std::optional<size_t> Position(const Channel& channel) const;

  private:
    struct Index {
        std::unordered_map<std::string, size_t> ids;
        std::multimap<std::tuple<int, int, int>, size_t> triplets;
        std::unordered_map<const Channel*, size_t> positions;
    };

    const Index& Indexed() const;

    ChannelVector mChannels;
    mutable std::unique_ptr<Index> mIndex;
};

}  // namespace hbbtv::sim
