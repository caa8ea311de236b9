// Requests of the favourite list family: see favourite_list_family.h.
#include "families/favourite_list/favourite_list_family.h"

#include "families/members.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kMostChannels = 20000;
constexpr int kAnyNetwork = -1;

class FavouriteListFamily : public Family {
  public:
    explicit FavouriteListFamily(const FamilySetup& setup);

  private:
    using In = const Arguments&;
    using Out = Json::Value&;

    std::shared_ptr<FavouriteList> Named(In in) const {
        return Find(mTv.favouriteLists, in, "fl_handle", "favourite list");
    }

    void InsertBefore(In in, Out out);
    void RemoveAt(In in, Out out);

    // A row that finds a channel of the list, or the null handle.
    template <typename Search>
    void Look(int code, const char* name, Search search) {
        Row(code, name,
            [this, search](In in, Out out) { out["channel"] = Text(mTv.channels, search(Named(in)->channels, in)); });
    }

    Tv& mTv;
};

// Its code numbers end where those of the collection begin: both have the same type.
FavouriteListFamily::FavouriteListFamily(const FamilySetup& setup)
    : Family({"favourite_list", "service_plugin_to_hbbtv_vb_fav_list", "", 5, "method", 15}), mTv(setup.tv) {
    Row(0, "Release", [this](In in, Out) { Remove(mTv.favouriteLists, in, "fl_handle", "favourite list"); });
    Row(1, "GetLength",
        [this](In in, Out out) { out["len"] = static_cast<unsigned>(Named(in)->channels.Channels().size()); });
    Row(2, "GetFavID", [this](In in, Out out) { out["favId"] = Named(in)->id; });
    Row(3, "SetName", [this](In in, Out) { Named(in)->name = in.ShortText("name"); });
    Row(4, "GetName", [this](In in, Out out) { out["name"] = Named(in)->name; });
    Look(5, "Item", [](const ChannelList& list, In in) { return At(list.Channels(), in.Int("index")); });
    Look(6, "GetChannel", [](const ChannelList& list, In in) { return list.WithId(in.Text("channelID")); });
    Look(7, "GetChannelByTriplet", [](const ChannelList& list, In in) {
        return list.WithTriplet(in.Int("onid"), in.Int("tsid"), in.Int("sid"), kAnyNetwork);
    });
    Look(8, "GetChannelBySourceID",
         [](const ChannelList& list, In in) { return list.WithSourceId(in.Int("sourceID")); });
    Row(9, "InsertBefore", &FavouriteListFamily::InsertBefore);
    Row(10, "Remove", &FavouriteListFamily::RemoveAt);
    Row(11, "Commit", [this](In in, Out) { mTv.favourites->Commit(*Named(in)); });
}

void FavouriteListFamily::InsertBefore(In in, Out) {
    ChannelList& list = Named(in)->channels;
    const size_t length = list.Channels().size();
    const int index = in.Int("index");
    if (index < 0 || static_cast<size_t>(index) > length) {
        throw Refused("index " + std::to_string(index) + " in a list of " + std::to_string(length));
    }
    if (length >= kMostChannels) throw Refused("a favourite list holds at most 20000 channels");
    const auto channel = mTv.serviceChannels.WithCcid(in.Text("ccid"));
    if (!channel) throw Refused("\"ccid\" names no channel of the line-up");
    list.Insert(static_cast<size_t>(index), channel);
}

void FavouriteListFamily::RemoveAt(In in, Out) {
    ChannelList& list = Named(in)->channels;
    const int index = in.Int("index");
    At(list.Channels(), index);
    list.Remove(static_cast<size_t>(index));
}

}  // namespace

std::unique_ptr<Family> MakeFavouriteListFamily(const FamilySetup& setup) {
    return std::make_unique<FavouriteListFamily>(setup);
}

}  // namespace hbbtv::sim
