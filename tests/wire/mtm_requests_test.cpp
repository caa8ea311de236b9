// Every operation of the tab manager's adaptor: its call, its request and its reply, written out.

#include "ipc/src/mtm/tolm_mtm_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmMtmAdaptorIpc;

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"OnTabCreated", Tell<Adaptor>(&Adaptor::OnTabCreated, -10), R"({"type": 0, "method": 0, "tabid": -10})", {}},
        {"OnTabDestroyed",
         Tell<Adaptor>(&Adaptor::OnTabDestroyed, -11),
         R"({"type": 0, "method": 1, "tabid": -11})",
         {}},
        {"OnRenderRequestCloseTab",
         Tell<Adaptor>(&Adaptor::OnRenderRequestCloseTab, -12),
         R"({"type": 0, "method": 2, "tabid": -12})",
         {}},
        {"OnAllTabsDestroyed", Tell<Adaptor>(&Adaptor::OnAllTabsDestroyed), R"({"type": 0, "method": 3})", {}},
        {"OnTabFocus", Tell<Adaptor>(&Adaptor::OnTabFocus, -14), R"({"type": 0, "method": 4, "tabid": -14})", {}},
        {"OnTabHide", Tell<Adaptor>(&Adaptor::OnTabHide, -15), R"({"type": 0, "method": 5, "tabid": -15})", {}},
        {"OnTabShow", Tell<Adaptor>(&Adaptor::OnTabShow, -16), R"({"type": 0, "method": 6, "tabid": -16})", {}},
        {"OnLoadingStateChanged",
         Tell<Adaptor>(&Adaptor::OnLoadingStateChanged, true, false, true),
         R"({"type": 0, "method": 6, "is_loading": true, "can_back": false, "can_forward": true})",
         {}},
        {"OnAddressBarChanged",
         Tell<Adaptor>(&Adaptor::OnAddressBarChanged, -18, std::string("text 8 of url")),
         R"({"type": 0, "method": 8, "tabid": -18, "url": "text 8 of url"})",
         {}},
        {"OnLoadProgressChanged",
         Tell<Adaptor>(&Adaptor::OnLoadProgressChanged, -19, 0.625),
         R"({"type": 0, "method": 9, "tabid": -19, "progress": 0.625})",
         {}},
        {"OnTabTitleChanged",
         Tell<Adaptor>(&Adaptor::OnTabTitleChanged, -110, std::string("text 10 of title")),
         R"({"type": 0, "method": 10, "tabid": -110, "title": "text 10 of title"})",
         {}},
        {"OnTabURLChanged",
         Tell<Adaptor>(&Adaptor::OnTabURLChanged, -111, std::string("text 11 of url")),
         R"({"type": 0, "method": 11, "tabid": -111, "title": "text 11 of url"})",
         {}},
        {"OnTabLoadFinished",
         Tell<Adaptor>(&Adaptor::OnTabLoadFinished, -112, std::string("text 12 of url")),
         R"({"type": 0, "method": 12, "tabid": -112, "url": "text 12 of url"})",
         {}},
        {"OnTabLoadFailed",
         Tell<Adaptor>(&Adaptor::OnTabLoadFailed, -113, std::string("text 13 of url"), -1130,
                       std::string("text 13 of description")),
         R"({"type": 0, "method": 13, "tabid": -113, "url": "text 13 of url", "error_code": -1130, )"
         R"("description": "text 13 of description"})",
         {}},
        {"OnMemoryWarningDetected",
         Tell<Adaptor>(&Adaptor::OnMemoryWarningDetected, -114),
         R"({"type": 0, "method": 14, "mem_status": -114})",
         {}},
        {"OnMemoryReduced",
         Tell<Adaptor>(&Adaptor::OnMemoryReduced, -1151, -1152),
         R"({"type": 0, "method": 15, "tabid": -1152, "level": -1151})",
         {}},
        {"OnBlinkOutOfMemory",
         Tell<Adaptor>(&Adaptor::OnBlinkOutOfMemory, -116),
         R"({"type": 0, "method": 16, "tabid": -116})",
         {}},
        {"OnTabDocumentLoadedInFrame",
         Tell<Adaptor>(&Adaptor::OnTabDocumentLoadedInFrame, -133),
         R"({"type": 0, "method": 33, "tabid": -133})",
         {}},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"OnAddressBarChanged", [](const std::string& text) { Adaptor::GetInstance()->OnAddressBarChanged(1, text); },
     R"({"type": 0, "method": 8, "tabid": 1, "url": ""})"},
    {"OnTabTitleChanged", [](const std::string& text) { Adaptor::GetInstance()->OnTabTitleChanged(1, text); },
     R"({"type": 0, "method": 10, "tabid": 1, "title": ""})"},
    {"OnTabURLChanged", [](const std::string& text) { Adaptor::GetInstance()->OnTabURLChanged(1, text); },
     R"({"type": 0, "method": 11, "tabid": 1, "title": ""})"},
    {"OnTabLoadFinished", [](const std::string& text) { Adaptor::GetInstance()->OnTabLoadFinished(1, text); },
     R"({"type": 0, "method": 12, "tabid": 1, "url": ""})"},
    {"OnTabLoadFailed", [](const std::string& text) { Adaptor::GetInstance()->OnTabLoadFailed(1, text, 2, text); },
     R"({"type": 0, "method": 13, "tabid": 1, "url": "", "error_code": 2, "description": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"mtm", "[ipc_mtm]", "tolm_mtm_adaptor_ipc.cpp", &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(MtmRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(MtmRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(MtmRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(MtmRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(MtmProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(MtmProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 59, "service_mtm_to_hbbtv", 1, "platform");
    ExpectTheProtocolsEndpoint("events", 60, "service_hbbtv_to_mtm", 1, "library");
}

TEST(MtmProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(0, {0, 1, 2, 3, 4, 5, 6, 6, 8, 9, 10, 11, 12, 13, 14, 15, 16, 33});
}

TEST(MtmProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample("OnTabURLChanged",
                              Tell<Adaptor>(&Adaptor::OnTabURLChanged, 3, std::string("http://hbbtv.example/")),
                              R"({"type": 0, "method": 11, "tabid": 3, "title": "http://hbbtv.example/"})", {});
}

}  // namespace hbbtv::test
