// The operations of configuration.
#include "ipc/src/plugin/tolm_configuration_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmConfigurationAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "configuration",
        "[ipc_configure]",
        "tolm_configuration_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"GetPreferredAudioLanguage", &Adaptor::GetPreferredAudioLanguage},
            {"SetPreferredAudioLanguage", &Adaptor::SetPreferredAudioLanguage},
            {"GetPreferredSubtitleLanguage", &Adaptor::GetPreferredSubtitleLanguage},
            {"SetPreferredSubtitleLanguage", &Adaptor::SetPreferredSubtitleLanguage},
            {"GetPreferredUILanguage", &Adaptor::GetPreferredUILanguage},
            {"SetPreferredUILanguage", &Adaptor::SetPreferredUILanguage},
            {"GetCountryId", &Adaptor::GetCountryId},
            {"SetCountryId", &Adaptor::SetCountryId},
            {"GetRegionId", &Adaptor::GetRegionId},
            {"SetRegionId", &Adaptor::SetRegionId},
            {"GetPvrPolicy", &Adaptor::GetPvrPolicy},
            {"SetPvrPolicy", &Adaptor::SetPvrPolicy},
            {"GetPvrSaveEpisodes", &Adaptor::GetPvrSaveEpisodes},
            {"SetPvrSaveEpisodes", &Adaptor::SetPvrSaveEpisodes},
            {"GetPvrSaveDays", &Adaptor::GetPvrSaveDays},
            {"SetPvrSaveDays", &Adaptor::SetPvrSaveDays},
            {"GetPvrStartPadding", &Adaptor::GetPvrStartPadding},
            {"SetPvrStartPadding", &Adaptor::SetPvrStartPadding},
            {"GetPvrEndPadding", &Adaptor::GetPvrEndPadding},
            {"SetPvrEndPadding", &Adaptor::SetPvrEndPadding},
            {"GetPreferredTimeShiftMode", &Adaptor::GetPreferredTimeShiftMode},
            {"SetPreferredTimeShiftMode", &Adaptor::SetPreferredTimeShiftMode},
            {"GetText", &Adaptor::GetText},
            // The key is not sent.
            Row("SetText", &Adaptor::SetText).Takes({"", "info"}),
            {"GetAudioDescriptionEnable", &Adaptor::GetAudioDescriptionEnable},
            {"GetAudioHearingImpaired", &Adaptor::GetAudioHearingImpaired},
            {"GetDeviceIdContent", &Adaptor::GetDeviceIdContent},
            {"GetDeviceIdEnable", &Adaptor::GetDeviceIdEnable},
            {"GetSubtitleEnable", &Adaptor::GetSubtitleEnable},
            {"ReplaceUIElement", &Adaptor::ReplaceUIElement},
            {"GetDttNetworkIds", &Adaptor::GetDttNetworkIds},
            {"RegisterCallback", &Adaptor::RegisterCallback},
            {"UnregisterCallback", &Adaptor::UnregisterCallback},
            {"GetRatingAge", &Adaptor::GetRatingAge},
            {"GetDNTPolicy", &Adaptor::GetDNTPolicy},
        },
    };
    return family;
}

}  // namespace hbbtv::test
