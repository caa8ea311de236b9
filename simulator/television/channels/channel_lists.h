// The television's channel list: the list of all channels, and the list in use, which is that one until somebody puts
// another in its place. Zapping goes through the list in use.
#pragma once

#include <memory>
#include <set>

#include "core/changes.h"
#include "television/channels/channel_list.h"

namespace hbbtv::sim {

class ChannelLists {
  public:
    // `all`: every channel that the list of all channels can hold.
    explicit ChannelLists(ChannelVector all);

    const std::shared_ptr<ChannelList>& All() const { return mAll; }
    const std::shared_ptr<ChannelList>& InUse() const { return mInUse; }

    // Null: the list of all channels.
    void Use(std::shared_ptr<ChannelList> list);

    // The next channel forward (1) or back (-1), round and round, that is not hidden. Null when this one is not in the
    // list in use. A channel that stands there twice counts where it stands first, so every one is reached.
    std::shared_ptr<Channel> Neighbour(const Channel& from, int step) const;

    // The channel with this number in the list in use, null without one.
    std::shared_ptr<Channel> WithNumber(int number) const;

    // The same among all channels, also those that were taken out.
    std::shared_ptr<Channel> KnownWithNumber(int number) const;

    // The viewer takes a channel out of the list of all channels and puts it back, to where it was. By number; null
    // when there is no such channel or nothing to do.
    std::shared_ptr<Channel> TakeOut(int number);
    std::shared_ptr<Channel> PutBack(int number);

    // The viewer hides a channel, or shows it again. By number; null when there is no such channel or nothing to do.
    std::shared_ptr<Channel> SetHidden(int number, bool hidden);

    Changes<> changed;  // another list is in use, or the viewer has changed the list of all channels

  private:
    void Fill();

    ChannelVector mKnown;
    std::set<const Channel*> mTakenOut;
    std::shared_ptr<ChannelList> mAll;
    std::shared_ptr<ChannelList> mInUse;
};

}  // namespace hbbtv::sim
