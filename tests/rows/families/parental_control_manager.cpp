// The operations of parental control manager.
#include "ipc/src/plugin/tolm_parental_control_manager_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmParentalControlManagerAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "parental_control_manager",
        "[ipc_parental_control]",
        "tolm_parental_control_manager_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"Create", &Adaptor::Create},
            {"Destroy", &Adaptor::Destroy},
            {"GetParentalRatingSchemeNum", &Adaptor::GetParentalRatingSchemeNum},
            {"GetParentalRatingSchemeByIndex", &Adaptor::GetParentalRatingSchemeByIndex},
            {"AddScheme", &Adaptor::AddScheme},
            {"ReleaseParentalRatingScheme", &Adaptor::ReleaseParentalRatingScheme},
            {"GetParentalRatingSchemeName", &Adaptor::GetParentalRatingSchemeName},
            {"GetThreshold", &Adaptor::GetThreshold},
            {"GetIconUrl", &Adaptor::GetIconUrl},
            {"ReleaseParentalRating", &Adaptor::ReleaseParentalRating},
            {"GetScheme", &Adaptor::GetScheme},
            {"GetParentalRatingName", &Adaptor::GetParentalRatingName},
            {"GetValue", &Adaptor::GetValue},
            {"GetLabel", &Adaptor::GetLabel},
            {"GetRegion", &Adaptor::GetRegion},
            {"GetRatingNum", &Adaptor::GetRatingNum},
            {"GetRatingByIndex", &Adaptor::GetRatingByIndex},
            {"AddParentalRating", &Adaptor::AddParentalRating},
            {"ReleaseParentalRatingCollection", &Adaptor::ReleaseParentalRatingCollection},
            {"GetLocalParentalRating", &Adaptor::GetLocalParentalRating},
        },
    };
    return family;
}

}  // namespace hbbtv::test
