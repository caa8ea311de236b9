// The television's channel lists: the list of all channels, and the list in use, which is the former unless a client
// has set another. Zapping follows the list in use.
#pragma once

#include <memory>
#include <set>

#include "core/changes.h"
#include "television/channels/channel_list.h"

namespace hbbtv::sim {

class ChannelLists {
  public:
    // `all`: every channel that the list of all channels can contain.
    explicit ChannelLists(ChannelVector all);

    const std::shared_ptr<ChannelList>& All() const { return mAll; }
    const std::shared_ptr<ChannelList>& InUse() const { return mInUse; }

    // Null: the list of all channels.
    void Use(std::shared_ptr<ChannelList> list);

    // Returns the next channel forward (1) or back (-1) that is not hidden, wrapping around. Null if this one is not in
    // the list in use. For a channel that is there twice, the first position counts, so that every channel can be
    // reached.
    std::shared_ptr<Channel> Neighbour(const Channel& from, int step) const;

    // Returns the channel with this number in the list in use, or null.
    std::shared_ptr<Channel> WithNumber(int number) const;

    // The same among all channels, including removed ones.
    std::shared_ptr<Channel> KnownWithNumber(int number) const;

    // The viewer removes a channel from the list of all channels, or puts it back where it was. By number; returns null
    // if there is no such channel or nothing to do.
    std::shared_ptr<Channel> TakeOut(int number);
    std::shared_ptr<Channel> PutBack(int number);

    // The viewer hides a channel, or shows it again. By number; returns null if there is no such channel or nothing to
    // do.
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
