// A list of channels: IChannelList over the platform's channel-list adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IChannelList.h>

#include "utils/include/tolm_debug.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using V1_0::IChannelList;

class ChannelList : public TolmService<IChannelList> {
  public:
    Return<int32_t> Release(int64_t list) override;
    Return<void> GetLength(int64_t list, GetLength_cb _hidl_cb) override;
    Return<void> Item(int64_t list, int32_t index, Item_cb _hidl_cb) override;
    Return<void> GetChannel(int64_t list, const hidl_string& channelId, GetChannel_cb _hidl_cb) override;
    Return<void> GetChannelByTriplet(int64_t list, int32_t onid, int32_t tsid, int32_t sid, int32_t nid,
                                     GetChannelByTriplet_cb _hidl_cb) override;
    Return<void> GetChannelBySourceID(int64_t list, int32_t sourceId, GetChannelBySourceID_cb _hidl_cb) override;
};

extern "C" IChannelList* HIDL_FETCH_IChannelList(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
