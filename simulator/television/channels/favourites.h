// The viewer's favourite lists, as they are now and as they are kept. What clients change counts at once and for
// everybody; it lasts beyond the end of the simulator from the commit on.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/changes.h"
#include "television/channels/channel_list.h"
#include "television/device/state_store.h"

namespace hbbtv::sim {

class FavouriteList {
  public:
    FavouriteList(std::string id, std::string name, ChannelList channels)
        : mId(std::move(id)), mName(std::move(name)), mChannels(std::move(channels)) {}

    const std::string& Id() const { return mId; }
    const std::string& Name() const { return mName; }
    const ChannelList& Channels() const { return mChannels; }

    void SetName(const std::string& name);

    // The place of a channel is at most the length of the list, that of one to remove is below it.
    void Insert(size_t place, const std::shared_ptr<Channel>& channel);
    void Remove(size_t place);

    Changes<> changed;  // its name or its channels

  private:
    std::string mId;
    std::string mName;
    ChannelList mChannels;
};

// A list as it is written down: channels by ccid, also those that are not received any more.
struct KeptFavourites {
    std::string id;
    std::string name;
    std::vector<std::string> ccids;
};

class Favourites {
  public:
    using List = std::shared_ptr<FavouriteList>;
    using ChannelOfCcid = std::function<std::shared_ptr<Channel>(const std::string&)>;

    // The lists that are kept in the store, or, when it has none, those that the line-up brings along, of which the
    // first is in use.
    Favourites(const StateStore& store, std::vector<KeptFavourites> brought, const ChannelOfCcid& channelOf);

    const std::vector<List>& Lists() const { return mLists; }
    const List& InUse() const { return mInUse; }  // null when none is
    List Find(const std::string& id) const;       // null without one

    // The lists that hold the channel, in their order.
    std::vector<List> Holding(const Channel& channel) const;

    // Throws Refused when there are too many.
    List Create(const std::string& name);

    // The list that is in use when it is removed is not in use any more.
    void Remove(size_t index);
    void Use(const List& list);

    // Keeps the name and the channels of the list, and the list itself when it is new. Throws Refused when the list is
    // not in the collection any more or cannot be kept; then nothing has changed.
    void Commit(const FavouriteList& list);

    // Keeps which lists there are, new ones as they are now, and which of them is in use. Throws Refused.
    void Commit();

    Changes<> changed;  // another list is in use, or the one in use has changed

  private:
    void Add(std::string id, std::string name, ChannelVector channels);
    void Take(const Json::Value& document);
    void Fill(const ChannelOfCcid& channelOf);
    void Keep(std::vector<KeptFavourites> lists, const std::string& inUse);
    const KeptFavourites* Kept(const std::string& id) const;

    const StateStore& mStore;
    std::vector<List> mLists;
    List mInUse;
    std::vector<KeptFavourites> mKept;
    std::string mKeptInUse;
    unsigned mCreated = 0;
};

}  // namespace hbbtv::sim
