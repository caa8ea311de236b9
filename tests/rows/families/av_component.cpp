// The operations of av component.
#include "ipc/src/plugin/tolm_av_component_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmAVComponentAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "av_component",
        "[ipc_avcomponent]",
        "tolm_av_component_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"Release", &Adaptor::Release},
            {"GetComponentTag", &Adaptor::GetComponentTag},
            {"GetPid", &Adaptor::GetPid},
            {"GetType", &Adaptor::GetType},
            {"GetEncoding", &Adaptor::GetEncoding},
            {"GetEncrypted", &Adaptor::GetEncrypted},
            {"GetAspectRatio", &Adaptor::GetAspectRatio},
            {"GetLanguage", &Adaptor::GetLanguage},
            {"GetAudioDescription", &Adaptor::GetAudioDescription},
            {"GetAudioChannelNum", &Adaptor::GetAudioChannelNum},
            {"GetHearingImpaired", &Adaptor::GetHearingImpaired},
            {"GetLabel", &Adaptor::GetLabel},
        },
    };
    return family;
}

}  // namespace hbbtv::test
