// The collection of favourite lists, and the one in use.
#include "family/family_setup.h"

#include "core/error.h"
#include "family/object_family.h"

namespace hbbtv::sim {

namespace {

class FavouriteListCollectionFamily : public ObjectFamily<Favourites> {
  public:
    explicit FavouriteListCollectionFamily(const FamilySetup& setup);

  private:
    void RemoveAt(In in, Out);
    void ActivateFavouriteList(In in, Out);

    Tv& mTv;
};

FavouriteListCollectionFamily::FavouriteListCollectionFamily(const FamilySetup& setup)
    : ObjectFamily({"favourite_list_collection", "service_plugin_to_hbbtv_vb_fav_list_collect", "", 6, "method", 15},
                   setup.tv.favouriteCollections, "flc_handle", "collection of favourite lists"),
      mTv(setup.tv) {
    using F = FavouriteListCollectionFamily;
    const auto look = [&](int code, const char* name, auto search) {
        Look(code, name, "list", setup.tv.favouriteLists, search);
    };
    Row(12, "Release", &F::Release);
    Get(13, "GetLength", "len", [](const Favourites& lists) { return static_cast<unsigned>(lists.Lists().size()); });
    look(14, "Item", [](const Favourites& lists, In in) { return At(lists.Lists(), in.Int("index")); });
    look(15, "GetFavouriteList", [](const Favourites& lists, In in) { return lists.Find(in.Text("favId")); });
    look(16, "CreateFavouriteList", [](Favourites& lists, In in) { return lists.Create(in.ShortText("name")); });
    Row(17, "Remove", &F::RemoveAt);
    Set(18, "Commit", [](Favourites& lists, In) { lists.Commit(); });
    Row(19, "ActivateFavouriteList", &F::ActivateFavouriteList);
}

void FavouriteListCollectionFamily::RemoveAt(In in, Out) {
    Favourites& lists = *Named(in);
    const int index = in.Int("index");
    At(lists.Lists(), index);
    if (lists.Remove(static_cast<size_t>(index))) mTv.onConfigChange(ConfigChange::FavouriteList);
}

void FavouriteListCollectionFamily::ActivateFavouriteList(In in, Out) {
    Favourites& lists = *Named(in);
    const auto list = lists.Find(in.Text("favId"));
    if (!list) throw Refused("there is no favourite list with this id");
    if (lists.Use(list)) mTv.onConfigChange(ConfigChange::FavouriteList);
}

}  // namespace

std::unique_ptr<Family> MakeFavouriteListCollectionFamily(const FamilySetup& setup) {
    return std::make_unique<FavouriteListCollectionFamily>(setup);
}

}  // namespace hbbtv::sim
