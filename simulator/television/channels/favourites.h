// The viewer's favourite lists, current and saved. Changes by clients take effect at once for all clients; a commit
// saves them beyond the end of the simulator.
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

    // The position of a new channel is at most the length of the list, that of one to remove is less.
    void Insert(size_t place, const std::shared_ptr<Channel>& channel);
    void Remove(size_t place);

    Changes<> changed;  // its name or its channels

  private:
    std::string mId;
    std::string mName;
    ChannelList mChannels;
};

// A list as saved: channels by ccid, including those that are no longer received.
struct KeptFavourites {
    std::string id;
    std::string name;
    std::vector<std::string> ccids;
};

class Favourites {
  public:
    using List = std::shared_ptr<FavouriteList>;
    using ChannelOfCcid = std::function<std::shared_ptr<Channel>(const std::string&)>;

    // Loads the lists from the store or, if it has none, from the line-up, whose first list is then in use.
    Favourites(const StateStore& store, std::vector<KeptFavourites> brought, const ChannelOfCcid& channelOf);

    const std::vector<List>& Lists() const { return mLists; }
    const List& InUse() const { return mInUse; }  // null when none is
    List Find(const std::string& id) const;       // null without one

    // Returns the lists that contain the channel, in order.
    std::vector<List> Holding(const Channel& channel) const;

    // Throws Refused if there are too many.
    List Create(const std::string& name);

    // Removing the list in use leaves none in use.
    void Remove(size_t index);
    void Use(const List& list);

    // Saves the name and the channels of the list, and the list itself if it is new. Throws Refused if the list is no
    // longer in the collection or cannot be saved; then nothing has changed.
    void Commit(const FavouriteList& list);

    // Saves which lists exist, with the contents of new ones, and which is in use. Throws Refused.
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
