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
};

FavouriteListCollectionFamily::FavouriteListCollectionFamily(const FamilySetup& setup)
    : ObjectFamily("favourite_list_collection", setup.tv.favouriteCollections, "collection of favourite lists") {
    using F = FavouriteListCollectionFamily;
    const auto look = [&](const char* name, auto search) { Look(name, "list", setup.tv.favouriteLists, search); };
    Row("Release", &F::Release);
    Get("GetLength", "len", [](const Favourites& lists) { return static_cast<unsigned>(lists.Lists().size()); });
    look("Item", [](const Favourites& lists, In in) { return At(lists.Lists(), in.Int("index")); });
    look("GetFavouriteList", [](const Favourites& lists, In in) { return lists.Find(in.Text("favId")); });
    look("CreateFavouriteList", [](Favourites& lists, In in) { return lists.Create(in.ShortText("name")); });
    Row("Remove", &F::RemoveAt);
    Set("Commit", [](Favourites& lists, In) { lists.Commit(); });
    Row("ActivateFavouriteList", &F::ActivateFavouriteList);
}

void FavouriteListCollectionFamily::RemoveAt(In in, Out) {
    Favourites& lists = *Named(in);
    const int index = in.Int("index");
    At(lists.Lists(), index);
    lists.Remove(static_cast<size_t>(index));
}

void FavouriteListCollectionFamily::ActivateFavouriteList(In in, Out) {
    Favourites& lists = *Named(in);
    const auto list = lists.Find(in.Text("favId"));
    if (!list) throw Refused("there is no favourite list with this id");
    lists.Use(list);
}

}  // namespace

std::unique_ptr<Family> MakeFavouriteListCollectionFamily(const FamilySetup& setup) {
    return std::make_unique<FavouriteListCollectionFamily>(setup);
}

}  // namespace hbbtv::sim
