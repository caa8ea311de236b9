// The operations of channel config.
#include "ipc/src/plugin/tolm_channel_config_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmChannelConfigAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "channel_config",
        "[ipc_videobroadcast]",
        "tolm_channel_config_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"RegisterCallback", &Adaptor::RegisterCallback},
            {"UnregisterCallback", &Adaptor::UnregisterCallback},
            {"GetCurrentChannel", &Adaptor::GetCurrentChannel},
            {"GetChannelList", &Adaptor::GetChannelList},
            {"GetBroadcastSupervisor", &Adaptor::GetBroadcastSupervisor},
            {"GetFavouriteListCollection", &Adaptor::GetFavouriteListCollection},
            {"GetCurrentFavouriteList", &Adaptor::GetCurrentFavouriteList},
            {"SetChannelList", &Adaptor::SetChannelList},
            {"CreateChannelList", &Adaptor::CreateChannelList},
            {"CreateFilteredList", &Adaptor::CreateFilteredList},
        },
    };
    return family;
}

}  // namespace hbbtv::test
