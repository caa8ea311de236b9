#include "ChannelConfig.h"

#include <mutex>

#include "ipc/tolm_log.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmChannelConfigAdaptorIpc;

namespace {

constexpr char kTag[] = "[hidl_video_broadcast_wrapper_client]";  // shared with the video/broadcast service

TolmClientHolder<IChannelConfigCallback> mConfigCallback;

// The client, the watch over it and the adaptor's receiver and context change together. Not taken by events.
std::mutex mRegistering;

}  // namespace

ChannelConfig::ChannelConfig() : TolmHidlClientMonitor(kTag) {}

Return<int32_t> ChannelConfig::RegisterCallback(const sp<IChannelConfigCallback>& cb, int64_t context) {
    if (cb == nullptr) {
        TOLM_LOG(ANDROID_LOG_ERROR, kTag, "cb is null");
        return -1;
    }
    Adaptor* adaptor = Adaptor::GetInstance();
    if (adaptor == nullptr) return -1;
    std::lock_guard<std::mutex> lock(mRegistering);
    Hold(mConfigCallback, cb);
    return adaptor->RegisterCallback(TolmChannelConfigCallback, Handle(context));
}

Return<int32_t> ChannelConfig::UnregisterCallback() {
    std::lock_guard<std::mutex> lock(mRegistering);
    Drop(mConfigCallback);
    return Status(&Adaptor::UnregisterCallback);
}

Return<void> ChannelConfig::CreateFilteredList(bool blocked, bool favourite, bool hidden,
                                               const hidl_string& favouriteListId, CreateFilteredList_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::CreateFilteredList, blocked, favourite, hidden, favouriteListId);
}

Return<void> ChannelConfig::GetCurrentChannel(GetCurrentChannel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetCurrentChannel);
}

Return<void> ChannelConfig::GetChannelList(GetChannelList_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetChannelList);
}

Return<void> ChannelConfig::GetFavouriteListCollection(GetFavouriteListCollection_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetFavouriteListCollection);
}

Return<void> ChannelConfig::GetCurrentFavouriteList(GetCurrentFavouriteList_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetCurrentFavouriteList);
}

Return<void> ChannelConfig::GetBroadcastSupervisor(GetBroadcastSupervisor_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetBroadcastSupervisor);
}

Return<int32_t> ChannelConfig::SetChannelList(int64_t list) {
    return Status(&Adaptor::SetChannelList, Handle(list));
}

Return<void> ChannelConfig::CreateChannelList(const hidl_vec<int64_t>& channels, CreateChannelList_cb _hidl_cb) {
    std::vector<void*> pointers;
    for (const int64_t channel : channels) pointers.push_back(Handle(channel));
    return Answer(_hidl_cb, &Adaptor::CreateChannelList, pointers);
}

void ChannelConfig::OnHidlClientDied(uint64_t, const wp<::android::hidl::base::V1_0::IBase>& who) {
    TOLM_LOG(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::serviceDied - client died");
    std::lock_guard<std::mutex> lock(mRegistering);
    if (!DropDead(mConfigCallback, who)) return;
    if (Adaptor* adaptor = Adaptor::GetInstance()) adaptor->UnregisterCallback();
}

void TolmChannelConfigCallback(const TolmChannelConfigEvent& event, const ::TolmChannelConfigEventInfo& info,
                               const void* context) {
    const sp<IChannelConfigCallback> client = mConfigCallback.Get();
    if (client == nullptr) return;
    // The client may have died just now: then there is nobody to tell.
    (void)client->OnChannelConfigEvent(event, {static_cast<uint8_t>(info.reserved)}, ToHandle(context)).isOk();
}

IChannelConfig* HIDL_FETCH_IChannelConfig(const char*) {
    return new ChannelConfig();
}

}  // namespace vantorel::hardware::hbbtv::implementation
