#include "FavouriteList.h"

#include "ipc/src/plugin/tolm_favourite_list_adaptor_ipc.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmFavouriteListAdaptorIpc;

Return<int32_t> FavouriteList::Release(int64_t list) {
    return Status(&Adaptor::Release, Handle(list));
}

Return<void> FavouriteList::GetLength(int64_t list, GetLength_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetLength, Handle(list));
}

Return<void> FavouriteList::Item(int64_t list, int32_t index, Item_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::Item, Handle(list), index);
}

Return<void> FavouriteList::GetFavID(int64_t list, GetFavID_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetFavID, Handle(list));
}

Return<void> FavouriteList::GetName(int64_t list, GetName_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetName, Handle(list));
}

Return<int32_t> FavouriteList::SetName(int64_t list, const hidl_string& name) {
    return Status(&Adaptor::SetName, Handle(list), name);
}

Return<void> FavouriteList::GetChannel(int64_t list, const hidl_string& channelId, GetChannel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetChannel, Handle(list), channelId);
}

Return<void> FavouriteList::GetChannelByTriplet(int64_t list, int32_t onid, int32_t tsid, int32_t sid,
                                                GetChannelByTriplet_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetChannelByTriplet, Handle(list), onid, tsid, sid);
}

Return<void> FavouriteList::GetChannelBySourceID(int64_t list, int32_t sourceId, GetChannelBySourceID_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetChannelBySourceID, Handle(list), sourceId);
}

Return<int32_t> FavouriteList::InsertBefore(int64_t list, int32_t index, const hidl_string& channelId) {
    return Status(&Adaptor::InsertBefore, Handle(list), index, channelId);
}

Return<int32_t> FavouriteList::Remove(int64_t list, int32_t index) {
    return Status(&Adaptor::Remove, Handle(list), index);
}

Return<int32_t> FavouriteList::Commit(int64_t list) {
    return Status(&Adaptor::Commit, Handle(list));
}

IFavouriteList* HIDL_FETCH_IFavouriteList(const char*) {
    return new FavouriteList();
}

}  // namespace vantorel::hardware::hbbtv::implementation
