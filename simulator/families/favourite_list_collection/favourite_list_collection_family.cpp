// Requests of the favourite list collection family: see favourite_list_collection_family.h.
#include "families/favourite_list_collection/favourite_list_collection_family.h"

#include "families/members.h"

namespace hbbtv::sim {

namespace {

class FavouriteListCollectionFamily : public Family {
  public:
    explicit FavouriteListCollectionFamily(const FamilySetup& setup);

  private:
    using In = const Arguments&;
    using Out = Json::Value&;

    Favourites& Named(In in) const {
        return *Find(mTv.favouriteCollections, in, "flc_handle", "collection of favourite lists");
    }

    // A row that gives a list, or the null handle.
    template <typename Search>
    void Look(int code, const char* name, Search search) {
        Row(code, name,
            [this, search](In in, Out out) { out["list"] = Text(mTv.favouriteLists, search(Named(in), in)); });
    }

    void RemoveAt(In in, Out);
    void ActivateFavouriteList(In in, Out);

    Tv& mTv;
};

FavouriteListCollectionFamily::FavouriteListCollectionFamily(const FamilySetup& setup)
    : Family({"favourite_list_collection", "service_plugin_to_hbbtv_vb_fav_list_collect", "", 6, "method", 15}),
      mTv(setup.tv) {
    using F = FavouriteListCollectionFamily;
    Row(12, "Release",
        [this](In in, Out) { Remove(mTv.favouriteCollections, in, "flc_handle", "collection of favourite lists"); });
    Row(13, "GetLength", [this](In in, Out out) { out["len"] = static_cast<unsigned>(Named(in).Lists().size()); });
    Look(14, "Item", [](const Favourites& lists, In in) { return At(lists.Lists(), in.Int("index")); });
    Look(15, "GetFavouriteList", [](const Favourites& lists, In in) { return lists.Find(in.Text("favId")); });
    Look(16, "CreateFavouriteList", [](Favourites& lists, In in) { return lists.Create(in.ShortText("name")); });
    Row(17, "Remove", &F::RemoveAt);
    Row(18, "Commit", [this](In in, Out) { Named(in).Commit(); });
    Row(19, "ActivateFavouriteList", &F::ActivateFavouriteList);
}

void FavouriteListCollectionFamily::RemoveAt(In in, Out) {
    Favourites& lists = Named(in);
    const int index = in.Int("index");
    At(lists.Lists(), index);
    if (lists.Remove(static_cast<size_t>(index))) mTv.onConfigChange(ConfigChange::FavouriteList);
}

void FavouriteListCollectionFamily::ActivateFavouriteList(In in, Out) {
    Favourites& lists = Named(in);
    const auto list = lists.Find(in.Text("favId"));
    if (!list) throw Refused("there is no favourite list with this id");
    if (lists.Use(list)) mTv.onConfigChange(ConfigChange::FavouriteList);
}

}  // namespace

std::unique_ptr<Family> MakeFavouriteListCollectionFamily(const FamilySetup& setup) {
    return std::make_unique<FavouriteListCollectionFamily>(setup);
}

}  // namespace hbbtv::sim
