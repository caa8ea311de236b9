// The operations of channel.
#include "ipc/src/plugin/tolm_channel_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmChannelAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "channel",
        "[ipc_videobroadcast]",
        "tolm_channel_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"Release", &Adaptor::Release},
            {"GetChannelType", &Adaptor::GetChannelType},
            {"GetIdType", &Adaptor::GetIdType},
            {"GetCcid", &Adaptor::GetCcid},
            {"GetTunerID", &Adaptor::GetTunerID},
            {"GetOnid", &Adaptor::GetOnid},
            {"GetNid", &Adaptor::GetNid},
            {"GetTsid", &Adaptor::GetTsid},
            {"GetSid", &Adaptor::GetSid},
            {"GetSourceID", &Adaptor::GetSourceID},
            {"GetFreq", &Adaptor::GetFreq},
            {"GetCni", &Adaptor::GetCni},
            {"SetName", &Adaptor::SetName},
            {"GetName", &Adaptor::GetName},
            {"GetMajorChannel", &Adaptor::GetMajorChannel},
            {"GetMinorChannel", &Adaptor::GetMinorChannel},
            {"GetDsd", &Adaptor::GetDsd},
            {"GetFavourite", &Adaptor::GetFavourite},
            {"GetFavIDsNum", &Adaptor::GetFavIDsNum},
            {"GetFavIDsNameByIndex", &Adaptor::GetFavIDsNameByIndex},
            {"GetLocked", &Adaptor::GetLocked},
            {"GetManualBlock", &Adaptor::GetManualBlock},
            {"GetIpBroadcastID", &Adaptor::GetIpBroadcastID},
            {"GetChannelMaxBitRate", &Adaptor::GetChannelMaxBitRate},
            {"GetChannelTTR", &Adaptor::GetChannelTTR},
            {"GetRecordable", &Adaptor::GetRecordable},
            {"SetLongName", &Adaptor::SetLongName},
            {"GetLongName", &Adaptor::GetLongName},
            {"SetDescription", &Adaptor::SetDescription},
            {"GetDescription", &Adaptor::GetDescription},
            {"GetAuthorized", &Adaptor::GetAuthorized},
            {"SetGenreNum", &Adaptor::SetGenreNum},
            {"SetGenreByIndex", &Adaptor::SetGenreByIndex},
            {"GetGenreNum", &Adaptor::GetGenreNum},
            {"GetGenreByIndex", &Adaptor::GetGenreByIndex},
            {"SetHidden", &Adaptor::SetHidden},
            {"GetHidden", &Adaptor::GetHidden},
            {"SetLogoURL", &Adaptor::SetLogoURL},
            {"GetLogoURL", &Adaptor::GetLogoURL},
            {"GetField", &Adaptor::GetField},
            {"GetLogo", &Adaptor::GetLogo},
            {"GetTerminalChannel", &Adaptor::GetTerminalChannel},
        },
    };
    return family;
}

}  // namespace hbbtv::test
