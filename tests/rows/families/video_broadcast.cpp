// The operations of video broadcast.
#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmVideoBroadcastAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "video_broadcast",
        "[ipc_vb]",
        "tolm_video_broadcast_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"Create", &Adaptor::Create},
            {"Release", &Adaptor::Release},
            {"Destroy", &Adaptor::Destroy},
            {"RegisterCallback", &Adaptor::RegisterCallback},
            {"UnregisterCallback", &Adaptor::UnregisterCallback},
            {"SetWindow", &Adaptor::SetWindow},
            {"GetFullScreen", &Adaptor::GetFullScreen},
            {"GetPlayState", &Adaptor::GetPlayState},
            {"BindToCurrentChannel", &Adaptor::BindToCurrentChannel},
            {"CreateChannel_1", &Adaptor::CreateChannel_1},
            {"CreateChannel_2", &Adaptor::CreateChannel_2},
            {"SetChannel", &Adaptor::SetChannel},
            {"PrevChannel", &Adaptor::PrevChannel},
            {"NextChannel", &Adaptor::NextChannel},
            {"SetFullScreen", &Adaptor::SetFullScreen},
            {"SetVolume", &Adaptor::SetVolume},
            {"GetVolume", &Adaptor::GetVolume},
            {"Stop", &Adaptor::Stop},
            {"GetPlaybackOffset", &Adaptor::GetPlaybackOffset},
            {"GetMaxOffset", &Adaptor::GetMaxOffset},
            {"GetRecordingState", &Adaptor::GetRecordingState},
            {"GetPlayPosition", &Adaptor::GetPlayPosition},
            {"GetPlaySpeed", &Adaptor::GetPlaySpeed},
            {"GetPlaySpeedNum", &Adaptor::GetPlaySpeedNum},
            {"GetPlaySpeedByIndex", &Adaptor::GetPlaySpeedByIndex},
            {"SetTimeShiftMode", &Adaptor::SetTimeShiftMode},
            {"GetTimeShiftMode", &Adaptor::GetTimeShiftMode},
            {"GetCurrentTimeShiftMode", &Adaptor::GetCurrentTimeShiftMode},
            {"StopRecording", &Adaptor::StopRecording},
            {"Pause", &Adaptor::Pause},
            {"Resume", &Adaptor::Resume},
            {"SetSpeed", &Adaptor::SetSpeed},
            {"Seek", &Adaptor::Seek},
            {"StopTimeShift", &Adaptor::StopTimeShift},
            {"SetChannel_Quiet", &Adaptor::SetChannel_Quiet},
            {"GetProgrammeNum", &Adaptor::GetProgrammeNum},
            {"GetProgrammeByIndex", &Adaptor::GetProgrammeByIndex},
            {"GetCurrentChannel", &Adaptor::GetCurrentChannel},
            {"GetAVComponentNumByType", &Adaptor::GetAVComponentNumByType},
            {"GetSpecificTypeAVComponentByIndex", &Adaptor::GetSpecificTypeAVComponentByIndex},
            {"GetCurrentActiveAVComponentNumByType", &Adaptor::GetCurrentActiveAVComponentNumByType},
            // The type is not sent.
            Row("GetSpecificTypeCurrentActiveAVComponentByIndex",
                &Adaptor::GetSpecificTypeCurrentActiveAVComponentByIndex)
                .Takes({"vb_handle", "", "index"}),
            {"SelectComponent", &Adaptor::SelectComponent},
            {"UnselectComponent", &Adaptor::UnselectComponent},
            {"SelectComponentByType", &Adaptor::SelectComponentByType},
            {"UnselectComponentByType", &Adaptor::UnselectComponentByType},
            {"CreateAudioComponent", &Adaptor::CreateAudioComponent},
            {"CreateVideoComponent", &Adaptor::CreateVideoComponent},
            {"CreateAVComponentList", &Adaptor::CreateAVComponentList},
            {"CreateProgrammeList", &Adaptor::CreateProgrammeList},
            {"ChangeDisplaySource", &Adaptor::ChangeDisplaySource},
            {"AddStreamEventListener", &Adaptor::AddStreamEventListener},
            {"RemoveStreamEventListener", &Adaptor::RemoveStreamEventListener},
        },
        {"SetChannel_Ext"},
    };
    return family;
}

}  // namespace hbbtv::test
