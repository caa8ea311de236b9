// All favourite lists: IFavouriteListCollection over the platform's collection adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IFavouriteListCollection.h>

#include "utils/include/tolm_debug.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using V1_0::IFavouriteListCollection;

class FavouriteListCollection : public TolmService<IFavouriteListCollection> {
  public:
    Return<int32_t> Release(int64_t collection) override;
    Return<void> GetLength(int64_t collection, GetLength_cb _hidl_cb) override;
    Return<void> Item(int64_t collection, int32_t index, Item_cb _hidl_cb) override;
    Return<void> GetFavouriteList(int64_t collection, const hidl_string& favId, GetFavouriteList_cb _hidl_cb) override;
    Return<void> CreateFavouriteList(int64_t collection, const hidl_string& name,
                                     CreateFavouriteList_cb _hidl_cb) override;
    Return<int32_t> Remove(int64_t collection, int32_t index) override;
    Return<int32_t> Commit(int64_t collection) override;
    Return<int32_t> ActivateFavouriteList(int64_t collection, const hidl_string& favId) override;
};

extern "C" IFavouriteListCollection* HIDL_FETCH_IFavouriteListCollection(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
