// The operations of mtm.
#include "ipc/src/mtm/tolm_mtm_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmMtmAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "mtm",
        "[ipc_mtm]",
        "tolm_mtm_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"OnTabCreated", &Adaptor::OnTabCreated},
            {"OnTabDestroyed", &Adaptor::OnTabDestroyed},
            {"OnRenderRequestCloseTab", &Adaptor::OnRenderRequestCloseTab},
            {"OnAllTabsDestroyed", &Adaptor::OnAllTabsDestroyed},
            {"OnTabFocus", &Adaptor::OnTabFocus},
            {"OnTabHide", &Adaptor::OnTabHide},
            {"OnTabShow", &Adaptor::OnTabShow},
            {"OnLoadingStateChanged", &Adaptor::OnLoadingStateChanged},
            {"OnAddressBarChanged", &Adaptor::OnAddressBarChanged},
            {"OnLoadProgressChanged", &Adaptor::OnLoadProgressChanged},
            {"OnTabTitleChanged", &Adaptor::OnTabTitleChanged},
            {"OnTabURLChanged", &Adaptor::OnTabURLChanged},
            {"OnTabLoadFinished", &Adaptor::OnTabLoadFinished},
            {"OnTabLoadFailed", &Adaptor::OnTabLoadFailed},
            {"OnMemoryWarningDetected", &Adaptor::OnMemoryWarningDetected},
            Row("OnMemoryReduced", &Adaptor::OnMemoryReduced).Takes({"level", "tabid"}),
            {"OnBlinkOutOfMemory", &Adaptor::OnBlinkOutOfMemory},
            {"OnTabDocumentLoadedInFrame", &Adaptor::OnTabDocumentLoadedInFrame},
        },
        {"RegisterCallback", "UnregisterCallback"},
    };
    return family;
}

}  // namespace hbbtv::test
