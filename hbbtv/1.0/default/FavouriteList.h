// A list of favourite channels: IFavouriteList over the platform's favourite-list adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IFavouriteList.h>

#include "utils/include/tolm_debug.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using V1_0::IFavouriteList;

class FavouriteList : public TolmService<IFavouriteList> {
  public:
    Return<int32_t> Release(int64_t list) override;
    Return<void> GetLength(int64_t list, GetLength_cb _hidl_cb) override;
    Return<void> Item(int64_t list, int32_t index, Item_cb _hidl_cb) override;
    Return<void> GetFavID(int64_t list, GetFavID_cb _hidl_cb) override;
    Return<void> GetName(int64_t list, GetName_cb _hidl_cb) override;
    Return<int32_t> SetName(int64_t list, const hidl_string& name) override;
    Return<void> GetChannel(int64_t list, const hidl_string& channelId, GetChannel_cb _hidl_cb) override;
    Return<void> GetChannelByTriplet(int64_t list, int32_t onid, int32_t tsid, int32_t sid,
                                     GetChannelByTriplet_cb _hidl_cb) override;
    Return<void> GetChannelBySourceID(int64_t list, int32_t sourceId, GetChannelBySourceID_cb _hidl_cb) override;
    Return<int32_t> InsertBefore(int64_t list, int32_t index, const hidl_string& channelId) override;
    Return<int32_t> Remove(int64_t list, int32_t index) override;
    Return<int32_t> Commit(int64_t list) override;
};

extern "C" IFavouriteList* HIDL_FETCH_IFavouriteList(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
