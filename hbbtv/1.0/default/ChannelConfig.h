// The channel configuration of the television: IChannelConfig over the platform's channel-configuration adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IChannelConfig.h>

#include "ipc/src/plugin/tolm_channel_config_adaptor_ipc.h"
#include "utils/include/tolm_debug.h"
#include "utils/include/tolm_hidl_client_monitor.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using V1_0::IChannelConfig;
using V1_0::IChannelConfigCallback;

class ChannelConfig : public TolmService<IChannelConfig>, public TolmHidlClientMonitor {
  public:
    ChannelConfig();

    Return<int32_t> RegisterCallback(const sp<IChannelConfigCallback>& cb, int64_t context) override;
    Return<int32_t> UnregisterCallback() override;
    Return<void> CreateFilteredList(bool blocked, bool favourite, bool hidden, const hidl_string& favouriteListId,
                                    CreateFilteredList_cb _hidl_cb) override;
    Return<void> GetCurrentChannel(GetCurrentChannel_cb _hidl_cb) override;
    Return<void> GetChannelList(GetChannelList_cb _hidl_cb) override;
    Return<void> GetFavouriteListCollection(GetFavouriteListCollection_cb _hidl_cb) override;
    Return<void> GetCurrentFavouriteList(GetCurrentFavouriteList_cb _hidl_cb) override;
    Return<void> GetBroadcastSupervisor(GetBroadcastSupervisor_cb _hidl_cb) override;
    Return<int32_t> SetChannelList(int64_t list) override;
    Return<void> CreateChannelList(const hidl_vec<int64_t>& channels, CreateChannelList_cb _hidl_cb) override;

    void OnHidlClientDied(uint64_t cookie, const wp<::android::hidl::base::V1_0::IBase>& who) override;
};

// Forwards an event of the adaptor to the registered client. Called on the adaptor's server thread.
void TolmChannelConfigCallback(const TolmChannelConfigEvent& event, const ::TolmChannelConfigEventInfo& info,
                               const void* context);

extern "C" IChannelConfig* HIDL_FETCH_IChannelConfig(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
