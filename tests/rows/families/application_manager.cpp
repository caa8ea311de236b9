// The operations of application manager.
#include "ipc/src/plugin/tolm_apm_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmApmAdaptorIpc;

namespace {

Outcome GetOwnerApp(const Json::Value& arguments) {
    int appId = arguments[0].asInt();
    int orgId = arguments[1].asInt();
    const std::vector<Json::Value> before{appId, orgId};
    const int status = Adaptor::GetInstance()->GetOwnerApp(appId, orgId);
    return {status, {appId, orgId}, before};
}

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "application_manager",
        "[ipc_apm]",
        "tolm_apm_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            // The results hold the parameters before the call, and a HIDL client that gets none gets these back.
            Row("GetOwnerApp", &GetOwnerApp).Takes({"appid", ""}).FailsWith({"appid", ""}),
            Row("GetCurrentApp", &Adaptor::GetCurrentApp).FailsWith({-1, -1}),
            {"GetChildApps", &Adaptor::GetChildApps},
            Row("CreateApp", &Adaptor::CreateApp).FailsWith({-1, -1}).CutsTextsAtZero(),
            {"DestroyApp", &Adaptor::DestroyApp},
            {"ShowApp", &Adaptor::ShowApp},
            {"HideApp", &Adaptor::HideApp},
            {"GetValue", &Adaptor::GetValue},
            {"GetOtherKeys", &Adaptor::GetOtherKeys},
            {"GetMaxiMumValue", &Adaptor::GetMaxiMumValue},
            {"GetMaxiMumOtherKeys", &Adaptor::GetMaxiMumOtherKeys},
            {"SetValue", &Adaptor::SetValue},
            {"GetKeyIcon", &Adaptor::GetKeyIcon},
            {"GetKeyLabel", &Adaptor::GetKeyLabel},
            {"SetDeviceResolution", &Adaptor::SetDeviceResolution},
            {"GetVBResouceAllowed", &Adaptor::GetVBResouceAllowed},
            {"SetBRAppToBI", &Adaptor::SetBRAppToBI},
            {"GetAppType", &Adaptor::GetAppType},
            {"SetBIAppToBR", &Adaptor::SetBIAppToBR},
            {"KeyConsumedByBrowser", &Adaptor::KeyConsumedByBrowser},
            {"NotifyDSMCCResponseToAPM", &Adaptor::NotifyDSMCCResponseToAPM},
        },
        {"RegisterCallback", "UnregisterCallback"},
    };
    return family;
}

}  // namespace hbbtv::test
