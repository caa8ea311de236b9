#include "ChannelConfig.h"

#include <vector>

#include "utils/include/tolm_hidl_answer.h"
#include "utils/include/tolm_hidl_transaction.h"
#include "utils/include/tolm_registered_client.h"
#include "utils/include/tolm_service_tags.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmChannelConfigAdaptorIpc;

namespace {

TolmRegisteredClient<IChannelConfigCallback> mConfigCallback;

}  // namespace

ChannelConfig::ChannelConfig()
    : TolmHidlClientMonitor(tolm::kVideoBroadcastTag, mConfigCallback, tolm::families::kChannelConfig) {}

Return<int32_t> ChannelConfig::RegisterCallback(const sp<IChannelConfigCallback>& cb, int64_t context) {
    return mConfigCallback.Register(this, cb, &Adaptor::RegisterCallback, TolmChannelConfigCallback, Handle(context));
}

Return<int32_t> ChannelConfig::UnregisterCallback() {
    return mConfigCallback.Unregister(this, &Adaptor::UnregisterCallback);
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
    mConfigCallback.OnDied(this, who, &Adaptor::UnregisterCallback);
}

void TolmChannelConfigCallback(const TolmChannelConfigEvent& event, const ::TolmChannelConfigEventInfo& info,
                               const void* context) {
    const sp<IChannelConfigCallback> client = mConfigCallback.Get();
    if (client == nullptr) return;
    tolm::Received(client->OnChannelConfigEvent(event, {static_cast<uint8_t>(info.reserved)}, ToHandle(context)),
                   tolm::kVideoBroadcastTag);
}

IChannelConfig* HIDL_FETCH_IChannelConfig(const char*) {
    return new ChannelConfig();
}

}  // namespace vantorel::hardware::hbbtv::implementation
