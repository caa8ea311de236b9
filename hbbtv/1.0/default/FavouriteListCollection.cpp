#include "FavouriteListCollection.h"

#include "ipc/src/plugin/tolm_favourite_list_collection_adaptor_ipc.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmFavouriteListCollectionAdaptorIpc;

Return<int32_t> FavouriteListCollection::Release(int64_t collection) {
    return Status(&Adaptor::Release, Handle(collection));
}

Return<void> FavouriteListCollection::GetLength(int64_t collection, GetLength_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetLength, Handle(collection));
}

Return<void> FavouriteListCollection::Item(int64_t collection, int32_t index, Item_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::Item, Handle(collection), index);
}

Return<void> FavouriteListCollection::GetFavouriteList(int64_t collection, const hidl_string& favId,
                                                       GetFavouriteList_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetFavouriteList, Handle(collection), favId);
}

Return<void> FavouriteListCollection::CreateFavouriteList(int64_t collection, const hidl_string& name,
                                                          CreateFavouriteList_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::CreateFavouriteList, Handle(collection), name);
}

Return<int32_t> FavouriteListCollection::Remove(int64_t collection, int32_t index) {
    return Status(&Adaptor::Remove, Handle(collection), index);
}

Return<int32_t> FavouriteListCollection::Commit(int64_t collection) {
    return Status(&Adaptor::Commit, Handle(collection));
}

Return<int32_t> FavouriteListCollection::ActivateFavouriteList(int64_t collection, const hidl_string& favId) {
    return Status(&Adaptor::ActivateFavouriteList, Handle(collection), favId);
}

IFavouriteListCollection* HIDL_FETCH_IFavouriteListCollection(const char*) {
    return new FavouriteListCollection();
}

}  // namespace vantorel::hardware::hbbtv::implementation
