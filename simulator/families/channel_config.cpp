// The channel and favourite lists in use, new lists, and the event that reports a change.
#include "family/family_setup.h"

#include <unordered_set>

#include "common/text/pointer_text.h"
#include "core/error.h"
#include "family/members.h"

namespace hbbtv::sim {

namespace {

// What has changed; the letter is part of the event.
enum class ConfigChange : char { ChannelList = 'L', FavouriteList = 'F' };

constexpr size_t kMostEntries = 1000000;  // in all lists that have a handle

class ChannelConfigFamily : public Family {
  public:
    explicit ChannelConfigFamily(const FamilySetup& setup);

  private:
    void RegisterCallback(In in, Out);
    void UnregisterCallback(In, Out) { mRegistered = false; }
    void GetCurrentChannel(In, Out out) { out["handle"] = Text(mTv.channels, mTv.tuner.On()); }
    void GetChannelList(In, Out out) { out["handle"] = Text(mTv.channelLists, mTv.channelList.InUse()); }
    void GetBroadcastSupervisor(In, Out out) { out["handle"] = PointerText(mTv.broadcastSupervisor()); }
    void GetFavouriteListCollection(In, Out out) { out["handle"] = Text(mTv.favouriteCollections, mTv.favourites); }
    void GetCurrentFavouriteList(In, Out out) { out["handle"] = Text(mTv.favouriteLists, mTv.favourites->InUse()); }
    void SetChannelList(In in, Out);
    void CreateChannelList(In in, Out out);
    void CreateFilteredList(In in, Out out);

    std::string Add(ChannelVector channels);
    std::unordered_set<const Channel*> Favourites(const std::string& listId) const;
    void Notify(ConfigChange change);

    // At the television.
    std::string SetHidden(const Words& words, bool hidden);
    std::string SetListed(const Words& words, bool listed);

    Tv& mTv;
    EventSink& mSink;
    bool mRegistered = false;
};

ChannelConfigFamily::ChannelConfigFamily(const FamilySetup& setup)
    : Family("channel_config"), mTv(setup.tv), mSink(Sends(setup.makeSink, {"changed"})) {
    using F = ChannelConfigFamily;
    Row("RegisterCallback", &F::RegisterCallback);
    Row("UnregisterCallback", &F::UnregisterCallback);
    Row("GetCurrentChannel", &F::GetCurrentChannel);
    Row("GetChannelList", &F::GetChannelList);
    Row("GetBroadcastSupervisor", &F::GetBroadcastSupervisor);
    Row("GetFavouriteListCollection", &F::GetFavouriteListCollection);
    Row("GetCurrentFavouriteList", &F::GetCurrentFavouriteList);
    Row("SetChannelList", &F::SetChannelList);
    Row("CreateChannelList", &F::CreateChannelList);
    Row("CreateFilteredList", &F::CreateFilteredList);
    AddCommand("hide NUMBER", "hide a channel from the viewer",
               [this](const Words& words) { return SetHidden(words, true); });
    AddCommand("show NUMBER", "show a hidden channel again",
               [this](const Words& words) { return SetHidden(words, false); });
    AddCommand("remove NUMBER", "remove a channel from the channel list",
               [this](const Words& words) { return SetListed(words, false); });
    AddCommand("restore NUMBER", "put a removed channel back",
               [this](const Words& words) { return SetListed(words, true); });
    mTv.channelList.changed.Watch([this] { Notify(ConfigChange::ChannelList); });
    mTv.favourites->changed.Watch([this] { Notify(ConfigChange::FavouriteList); });
}

// The event has no context, so the caller's is only checked.
void ChannelConfigFamily::RegisterCallback(In in, Out) {
    in.Pointer("context");
    mRegistered = true;
}

void ChannelConfigFamily::Notify(ConfigChange change) {
    if (!mRegistered) return;
    Json::Value event;
    event["reserved"] = std::string(1, static_cast<char>(change));
    mSink.Send("changed", event);
}

void ChannelConfigFamily::SetChannelList(In in, Out) {
    const bool none = in.Pointer("list") == 0;
    const auto list = none ? nullptr : Find(mTv.channelLists, in, "list", "channel list");
    mTv.channelList.Use(list);
}

std::string ChannelConfigFamily::Add(ChannelVector channels) {
    size_t entries = channels.size();
    for (const auto& entry : mTv.channelLists.All()) entries += entry.second->Channels().size();
    if (entries > kMostEntries) throw Refused("too many channels in lists; release some");
    return Text(mTv.channelLists, std::make_shared<ChannelList>(std::move(channels)));
}

// The announced size does not allocate anything: the first missing member ends the loop.
void ChannelConfigFamily::CreateChannelList(In in, Out out) {
    const unsigned size = in.UInt("size");
    ChannelVector channels;
    for (unsigned i = 0; i < size; ++i) {
        channels.push_back(Find(mTv.channels, in, ("channel" + std::to_string(i)).c_str(), "channel"));
    }
    out["list"] = Add(std::move(channels));
}

// In one list, or in all if the id is empty.
std::unordered_set<const Channel*> ChannelConfigFamily::Favourites(const std::string& listId) const {
    if (!listId.empty() && !mTv.favourites->Find(listId)) throw Refused("there is no favourite list with this id");
    std::unordered_set<const Channel*> favourites;
    for (const auto& list : mTv.favourites->Lists()) {
        if (!listId.empty() && list->Id() != listId) continue;
        for (const auto& channel : list->Channels().Channels()) favourites.insert(channel.get());
    }
    return favourites;
}

// OIPF DAE volume 5: a channel is added when each of its three properties is as the flag says. The favourite list is
// used only if favourites are requested.
void ChannelConfigFamily::CreateFilteredList(In in, Out out) {
    const bool blocked = in.Bool("blocked");
    const bool favourite = in.Bool("favourite");
    const bool hidden = in.Bool("hidden");
    const std::string listId = in.Text("favouriteListID");
    const auto favourites = Favourites(favourite ? listId : "");
    ChannelVector channels;
    for (const auto& channel : mTv.channelList.All()->Channels()) {
        const bool isFavourite = favourites.count(channel.get()) != 0;
        if (channel->Blocked() == blocked && isFavourite == favourite && channel->hidden == hidden) {
            channels.push_back(channel);
        }
    }
    out["handle"] = Add(std::move(channels));
}

std::string ChannelConfigFamily::SetHidden(const Words& words, bool hidden) {
    const auto number = Number(Word(words));
    if (!number) throw WrongWords();
    const auto channel = mTv.channelList.KnownWithNumber(*number);
    if (!channel) throw Refused("there is no such channel in the list");
    if (!mTv.channelList.SetHidden(*number, hidden)) {
        throw Refused(hidden ? "the channel is already hidden" : "the channel is not hidden");
    }
    return channel->name;
}

std::string ChannelConfigFamily::SetListed(const Words& words, bool listed) {
    const auto number = Number(Word(words));
    if (!number) throw WrongWords();
    const auto channel = listed ? mTv.channelList.PutBack(*number) : mTv.channelList.TakeOut(*number);
    if (!channel) throw Refused(listed ? "no removed channel has this number" : "there is no such channel in the list");
    return channel->name;
}

}  // namespace

std::unique_ptr<Family> MakeChannelConfigFamily(const FamilySetup& setup) {
    return std::make_unique<ChannelConfigFamily>(setup);
}

}  // namespace hbbtv::sim
