// One favourite list: reading and changing it.
#include "family/family_setup.h"

#include "core/error.h"
#include "family/object_family.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kMostChannels = 20000;
constexpr int kAnyNetwork = -1;

class FavouriteListFamily : public ObjectFamily<FavouriteList> {
  public:
    explicit FavouriteListFamily(const FamilySetup& setup);

  private:
    void InsertBefore(In in, Out);
    void RemoveAt(In in, Out);

    Tv& mTv;
};

// Its codes end where those of the collection begin: both have the same type.
FavouriteListFamily::FavouriteListFamily(const FamilySetup& setup)
    : ObjectFamily("favourite_list", setup.tv.favouriteLists, "favourite list"), mTv(setup.tv) {
    using F = FavouriteListFamily;
    const auto look = [&](const char* name, auto search) {
        Look(name, "channel", setup.tv.channels,
             [search](const FavouriteList& list, In in) { return search(list.Channels(), in); });
    };
    Row("Release", &F::Release);
    Get("GetLength", "len",
        [](const FavouriteList& list) { return static_cast<unsigned>(list.Channels().Channels().size()); });
    Get("GetFavID", "favId", [](const FavouriteList& list) { return list.Id(); });
    Set("SetName", [](FavouriteList& list, In in) { list.SetName(in.ShortText("name")); });
    Get("GetName", "name", [](const FavouriteList& list) { return list.Name(); });
    look("Item", [](const ChannelList& list, In in) { return At(list.Channels(), in.Int("index")); });
    look("GetChannel", [](const ChannelList& list, In in) { return list.WithId(in.Text("channelID")); });
    look("GetChannelByTriplet", [](const ChannelList& list, In in) {
        return list.WithTriplet(in.Int("onid"), in.Int("tsid"), in.Int("sid"), kAnyNetwork);
    });
    look("GetChannelBySourceID", [](const ChannelList& list, In in) { return list.WithSourceId(in.Int("sourceID")); });
    Row("InsertBefore", &F::InsertBefore);
    Row("Remove", &F::RemoveAt);
    Set("Commit", [this](FavouriteList& list, In) { mTv.favourites->Commit(list); });
}

void FavouriteListFamily::InsertBefore(In in, Out) {
    const auto list = Named(in);
    const size_t length = list->Channels().Channels().size();
    const int index = in.Int("index");
    if (index < 0 || static_cast<size_t>(index) > length) {
        throw Refused("index " + std::to_string(index) + " in a list of " + std::to_string(length));
    }
    if (length >= kMostChannels) throw Refused("a favourite list holds at most 20000 channels");
    const auto channel = mTv.serviceChannels.WithCcid(in.Text("ccid"));
    if (!channel) throw Refused("\"ccid\" does not name a channel of the line-up");
    list->Insert(static_cast<size_t>(index), channel);
}

void FavouriteListFamily::RemoveAt(In in, Out) {
    const auto list = Named(in);
    const int index = in.Int("index");
    At(list->Channels().Channels(), index);
    list->Remove(static_cast<size_t>(index));
}

}  // namespace

std::unique_ptr<Family> MakeFavouriteListFamily(const FamilySetup& setup) {
    return std::make_unique<FavouriteListFamily>(setup);
}

}  // namespace hbbtv::sim
