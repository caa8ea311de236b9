#include "television/channels/channel_list.h"

#include <algorithm>

namespace hbbtv::sim {

void ChannelList::Assign(ChannelVector channels) {
    mIndex.reset();
    mChannels = std::move(channels);
}

void ChannelList::Insert(size_t index, std::shared_ptr<Channel> channel) {
    mIndex.reset();
    mChannels.insert(mChannels.begin() + static_cast<std::ptrdiff_t>(index), std::move(channel));
}

void ChannelList::Remove(size_t index) {
    mIndex.reset();
    mChannels.erase(mChannels.begin() + static_cast<std::ptrdiff_t>(index));
}

const ChannelList::Index& ChannelList::Indexed() const {
    if (mIndex) return *mIndex;
    mIndex = std::make_unique<Index>();
    for (size_t i = 0; i < mChannels.size(); ++i) {
        const Channel& channel = *mChannels[i];
        mIndex->ids.emplace(channel.ccid, i);
        if (!channel.ipBroadcastId.empty()) mIndex->ids.emplace(channel.ipBroadcastId, i);
        mIndex->triplets.emplace(std::tie(channel.onid, channel.tsid, channel.sid), i);
        mIndex->positions.emplace(&channel, i);
    }
    return *mIndex;
}

std::shared_ptr<Channel> ChannelList::WithId(const std::string& id) const {
    const auto found = Indexed().ids.find(id);
    return found == Indexed().ids.end() ? nullptr : mChannels[found->second];
}

std::shared_ptr<Channel> ChannelList::WithTriplet(int onid, int tsid, int sid, int nid) const {
    const auto fits = [&](const Channel& channel) {
        const bool ids = (onid < 0 || channel.onid == onid) && (tsid < 0 || channel.tsid == tsid) && channel.sid == sid;
        return ids && (nid < 0 || channel.Nid() == nid) && !channel.OverIp();
    };
    if (onid < 0 || tsid < 0) {
        const auto found = std::find_if(mChannels.begin(), mChannels.end(), [&](const auto& c) { return fits(*c); });
        return found == mChannels.end() ? nullptr : *found;
    }
    const auto same = Indexed().triplets.equal_range({onid, tsid, sid});
    for (auto entry = same.first; entry != same.second; ++entry) {
        if (fits(*mChannels[entry->second])) return mChannels[entry->second];
    }
    return nullptr;
}

std::shared_ptr<Channel> ChannelList::WithSourceId(int sourceId) const {
    const auto found = std::find_if(mChannels.begin(), mChannels.end(),
                                    [&](const auto& c) { return sourceId != 0 && c->sourceId == sourceId; });
    return found == mChannels.end() ? nullptr : *found;
}

std::optional<size_t> ChannelList::Position(const Channel& channel) const {
    const auto found = Indexed().positions.find(&channel);
    if (found == Indexed().positions.end()) return std::nullopt;
    return found->second;
}

}  // namespace hbbtv::sim
