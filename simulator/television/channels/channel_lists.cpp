#include "television/channels/channel_lists.h"

#include <algorithm>

namespace hbbtv::sim {

namespace {

std::shared_ptr<Channel> WithNumberIn(const ChannelVector& channels, int number) {
    const auto found = std::find_if(channels.begin(), channels.end(),
                                    [&](const auto& channel) { return number != 0 && channel->Number() == number; });
    return found == channels.end() ? nullptr : *found;
}

}  // namespace

ChannelLists::ChannelLists(ChannelVector all)
    : mKnown(std::move(all)), mAll(std::make_shared<ChannelList>(mKnown)), mInUse(mAll) {}

void ChannelLists::Use(std::shared_ptr<ChannelList> list) {
    if (!list) list = mAll;
    if (list == mInUse) return;
    mInUse = std::move(list);
    changed.Notify();
}

std::shared_ptr<Channel> ChannelLists::Neighbour(const Channel& from, int step) const {
    const auto start = mInUse->Position(from);
    if (!start) return nullptr;
    const ChannelVector& channels = mInUse->Channels();
    const size_t count = channels.size();
    const size_t stride = step > 0 ? 1 : count - 1;
    size_t at = (*start + stride) % count;
    while (at != *start && (channels[at]->hidden || mInUse->Position(*channels[at]) != at)) at = (at + stride) % count;
    return channels[at];
}

std::shared_ptr<Channel> ChannelLists::WithNumber(int number) const {
    return WithNumberIn(mInUse->Channels(), number);
}

std::shared_ptr<Channel> ChannelLists::KnownWithNumber(int number) const {
    return WithNumberIn(mKnown, number);
}

std::shared_ptr<Channel> ChannelLists::TakeOut(int number) {
    const auto channel = KnownWithNumber(number);
    if (!channel || !mTakenOut.insert(channel.get()).second) return nullptr;
    Fill();
    return channel;
}

std::shared_ptr<Channel> ChannelLists::PutBack(int number) {
    const auto channel = KnownWithNumber(number);
    if (!channel || mTakenOut.erase(channel.get()) == 0) return nullptr;
    Fill();
    return channel;
}

std::shared_ptr<Channel> ChannelLists::SetHidden(int number, bool hidden) {
    const auto channel = KnownWithNumber(number);
    if (!channel || channel->hidden == hidden) return nullptr;
    channel->hidden = hidden;
    changed.Notify();
    return channel;
}

void ChannelLists::Fill() {
    ChannelVector channels;
    for (const auto& channel : mKnown) {
        if (mTakenOut.count(channel.get()) == 0) channels.push_back(channel);
    }
    mAll->Assign(std::move(channels));
    changed.Notify();
}

}  // namespace hbbtv::sim
