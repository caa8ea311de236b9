// The operations of programme.
#include "ipc/src/plugin/tolm_programme_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmProgrammeAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "programme",
        "[ipc_programme]",
        "tolm_programme_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"Release", &Adaptor::Release},
            {"GetName", &Adaptor::GetName},
            {"SetName", &Adaptor::SetName},
            {"GetDescription", &Adaptor::GetDescription},
            {"SetDescription", &Adaptor::SetDescription},
            {"GetLongDescription", &Adaptor::GetLongDescription},
            {"SetLongDescription", &Adaptor::SetLongDescription},
            {"GetStartTime", &Adaptor::GetStartTime},
            {"SetStartTime", &Adaptor::SetStartTime},
            {"GetDuration", &Adaptor::GetDuration},
            {"SetDuration", &Adaptor::SetDuration},
            {"GetChannelID", &Adaptor::GetChannelID},
            {"SetChannelID", &Adaptor::SetChannelID},
            {"GetProgramID", &Adaptor::GetProgramID},
            {"SetProgramID", &Adaptor::SetProgramID},
            {"GetProgramIDType", &Adaptor::GetProgramIDType},
            {"SetProgramIDType", &Adaptor::SetProgramIDType},
            {"GetParentalRatings", &Adaptor::GetParentalRatings},
            {"GetSIDescriptorNum", &Adaptor::GetSIDescriptorNum},
            {"GetSIDescriptorByIndex", &Adaptor::GetSIDescriptorByIndex},
            {"GetSIDescriptorByEventId", &Adaptor::GetSIDescriptorByEventId},
        },
    };
    return family;
}

}  // namespace hbbtv::test
