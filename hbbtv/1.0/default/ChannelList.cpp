#include "ChannelList.h"

#include "ipc/src/plugin/tolm_channel_list_adaptor_ipc.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmChannelListAdaptorIpc;

Return<int32_t> ChannelList::Release(int64_t list) {
    return Status(&Adaptor::Release, Handle(list));
}

Return<void> ChannelList::GetLength(int64_t list, GetLength_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetLength, Handle(list));
}

Return<void> ChannelList::Item(int64_t list, int32_t index, Item_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::Item, Handle(list), index);
}

Return<void> ChannelList::GetChannel(int64_t list, const hidl_string& channelId, GetChannel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetChannel, Handle(list), channelId);
}

Return<void> ChannelList::GetChannelByTriplet(int64_t list, int32_t onid, int32_t tsid, int32_t sid, int32_t nid,
                                              GetChannelByTriplet_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetChannelByTriplet, Handle(list), onid, tsid, sid, nid);
}

Return<void> ChannelList::GetChannelBySourceID(int64_t list, int32_t sourceId, GetChannelBySourceID_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetChannelBySourceID, Handle(list), sourceId);
}

IChannelList* HIDL_FETCH_IChannelList(const char*) {
    return new ChannelList();
}

}  // namespace vantorel::hardware::hbbtv::implementation
