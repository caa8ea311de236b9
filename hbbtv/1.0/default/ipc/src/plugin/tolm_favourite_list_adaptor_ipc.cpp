#include "ipc/src/plugin/tolm_favourite_list_adaptor_ipc.h"

using namespace tolm;

TolmFavouriteListAdaptorIpc::TolmFavouriteListAdaptorIpc() : TolmAdaptorClient(families::kFavouriteList) {}

int TolmFavouriteListAdaptorIpc::Release(const void* list) {
    return Call(0, {Pointer("fl_handle", list)});
}

int TolmFavouriteListAdaptorIpc::GetLength(const void* list, unsigned& len) {
    return Call(1, {Pointer("fl_handle", list)}, {ToUInt("len", len)});
}

int TolmFavouriteListAdaptorIpc::GetFavID(const void* list, std::string& favId) {
    return Call(2, {Pointer("fl_handle", list)}, {ToText("favId", favId)});
}

int TolmFavouriteListAdaptorIpc::SetName(const void* list, const std::string& name) {
    return Call(3, {Pointer("fl_handle", list), Text("name", name)});
}

int TolmFavouriteListAdaptorIpc::GetName(const void* list, std::string& name) {
    return Call(4, {Pointer("fl_handle", list)}, {ToText("name", name)});
}

int TolmFavouriteListAdaptorIpc::Item(const void* list, int index, void*& channel) {
    return Call(5, {Pointer("fl_handle", list), Int("index", index)}, {ToPointer("channel", channel)});
}

int TolmFavouriteListAdaptorIpc::GetChannel(const void* list, const std::string& channelID, void*& channel) {
    return Call(6, {Pointer("fl_handle", list), Text("channelID", channelID)}, {ToPointer("channel", channel)});
}

int TolmFavouriteListAdaptorIpc::GetChannelByTriplet(const void* list, int onid, int tsid, int sid, void*& channel) {
    return Call(7, {Pointer("fl_handle", list), Int("onid", onid), Int("tsid", tsid), Int("sid", sid)},
                {ToPointer("channel", channel)});
}

int TolmFavouriteListAdaptorIpc::GetChannelBySourceID(const void* list, int sourceID, void*& channel) {
    return Call(8, {Pointer("fl_handle", list), Int("sourceID", sourceID)}, {ToPointer("channel", channel)});
}

int TolmFavouriteListAdaptorIpc::InsertBefore(const void* list, int index, const std::string& ccid) {
    return Call(9, {Pointer("fl_handle", list), Int("index", index), Text("ccid", ccid)});
}

int TolmFavouriteListAdaptorIpc::Remove(const void* list, int index) {
    return Call(10, {Pointer("fl_handle", list), Int("index", index)});
}

int TolmFavouriteListAdaptorIpc::Commit(const void* list) {
    return Call(11, {Pointer("fl_handle", list)});
}
