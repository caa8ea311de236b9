// The operations of channel list.
#include "ipc/src/plugin/tolm_channel_list_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmChannelListAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "channel_list",
        "[ipc_videobroadcast]",
        "tolm_channel_list_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"Release", &Adaptor::Release},
            {"GetLength", &Adaptor::GetLength},
            {"Item", &Adaptor::Item},
            {"GetChannel", &Adaptor::GetChannel},
            {"GetChannelByTriplet", &Adaptor::GetChannelByTriplet},
            {"GetChannelBySourceID", &Adaptor::GetChannelBySourceID},
        },
    };
    return family;
}

}  // namespace hbbtv::test
