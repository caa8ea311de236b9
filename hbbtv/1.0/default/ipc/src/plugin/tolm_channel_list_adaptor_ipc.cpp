#include "ipc/src/plugin/tolm_channel_list_adaptor_ipc.h"

using namespace tolm;

TolmChannelListAdaptorIpc::TolmChannelListAdaptorIpc() : TolmAdaptorClient(families::kChannelList) {}

int TolmChannelListAdaptorIpc::Release(const void* list) {
    return Call(0, {Pointer("cl_handle", list)});
}

int TolmChannelListAdaptorIpc::GetLength(const void* list, unsigned& len) {
    return Call(1, {Pointer("cl_handle", list)}, {ToUInt("len", len)});
}

int TolmChannelListAdaptorIpc::Item(const void* list, int index, void*& channel) {
    return Call(2, {Pointer("cl_handle", list), Int("index", index)}, {ToPointer("channel", channel)});
}

int TolmChannelListAdaptorIpc::GetChannel(const void* list, const std::string& channelID, void*& channel) {
    return Call(3, {Pointer("cl_handle", list), Text("channelID", channelID)}, {ToPointer("channel", channel)});
}

int TolmChannelListAdaptorIpc::GetChannelByTriplet(const void* list, int onid, int tsid, int sid, int nid,
                                                   void*& channel) {
    return Call(4, {Pointer("cl_handle", list), Int("onid", onid), Int("tsid", tsid), Int("sid", sid), Int("nid", nid)},
                {ToPointer("channel", channel)});
}

int TolmChannelListAdaptorIpc::GetChannelBySourceID(const void* list, int sourceID, void*& channel) {
    return Call(5, {Pointer("cl_handle", list), Int("sourceID", sourceID)}, {ToPointer("channel", channel)});
}
