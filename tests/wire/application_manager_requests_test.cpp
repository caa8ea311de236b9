// Every operation of the application manager's adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_apm_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Apm = TolmApmAdaptorIpc;
using Pairs = std::vector<std::pair<int, int>>;

constexpr char kOneWayForm[] = "one-way";

// The operations that take an application first and may take more.
template <typename Operation, typename... Arguments>
std::function<Outcome()> TellOf(int appId, int orgId, Operation operation, Arguments... arguments) {
    return Tell<Apm>(operation, appId, orgId, arguments...);
}

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"GetOwnerApp",
         AskTwo<Apm, int>(&Apm::GetOwnerApp),
         R"({"t": 201, "appid": -77777})",
         {{"appid", "int", "-2011", "-2011"}, {"orgid", "int", "-2012", "-2012"}}},
        {"GetCurrentApp",
         AskTwo<Apm, int>(&Apm::GetCurrentApp),
         R"({"t": 203})",
         {{"appid", "int", "-2031", "-2031"}, {"orgid", "int", "-2032", "-2032"}}},
        {"GetChildApps",
         Ask<Apm, Pairs>(&Apm::GetChildApps, -2053, -2054),
         R"({"t": 205, "appid": -2053, "orgid": -2054})",
         {{"appNum", "pairs", "2", "[-77777/-77777 501/19 -502/-20]"},
          {"appidArray", "string", R"("             501            -502")", nullptr},
          {"orgidArray", "string", R"("              19             -20")", nullptr}}},
        {"CreateApp",
         AskTwo<Apm, int>(&Apm::CreateApp, -2073, -2074, "text 207 of url", true, false),
         R"({"t": 207, "appid": -2073, "orgid": -2074, "url": "text 207 of url", "child": 1, "opapp": 0})",
         {{"appid", "int", "-2071", "-2071"}, {"orgid", "int", "-2072", "-2072"}}},
        {"DestroyApp",
         TellOf(-2091, -2092, &Apm::DestroyApp),
         R"({"t": 209, "appid": -2091, "orgid": -2092})",
         {},
         kOneWayForm},
        {"ShowApp",
         TellOf(-2101, -2102, &Apm::ShowApp),
         R"({"t": 210, "appid": -2101, "orgid": -2102})",
         {},
         kOneWayForm},
        {"HideApp",
         TellOf(-2111, -2112, &Apm::HideApp),
         R"({"t": 211, "appid": -2111, "orgid": -2112})",
         {},
         kOneWayForm},
        {"GetValue",
         Ask<Apm, int>(&Apm::GetValue, -2202, -2203),
         R"({"t": 220, "appid": -2202, "orgid": -2203})",
         {{"value", "int", "-2201", "-2201"}}},
        {"GetOtherKeys",
         Ask<Apm, std::vector<int>>(&Apm::GetOtherKeys, -2222, -2223),
         R"({"t": 222, "appid": -2222, "orgid": -2223})",
         {{"num", "count", "3", "[-77777 -4031 -4032 -4033]"},
          {"k0", "int", "-4031", nullptr},
          {"k1", "int", "-4032", nullptr},
          {"k2", "int", "-4033", nullptr}}},
        {"GetMaxiMumValue",
         Ask<Apm, int>(&Apm::GetMaxiMumValue, -2242, -2243),
         R"({"t": 224, "appid": -2242, "orgid": -2243})",
         {{"maxvalue", "int", "-2241", "-2241"}}},
        {"GetMaxiMumOtherKeys",
         Ask<Apm, std::vector<int>>(&Apm::GetMaxiMumOtherKeys, -2262, -2263),
         R"({"t": 226, "appid": -2262, "orgid": -2263})",
         {{"num", "count", "2", "[-77777 -4151 -4152]"},
          {"k0", "int", "-4151", nullptr},
          {"k1", "int", "-4152", nullptr}}},
        {"SetValue",
         TellOf(-2321, -2322, &Apm::SetValue, -2323, std::vector<int>{-4031, -4032, -4033}),
         R"({"t": 232, "appid": -2321, "orgid": -2322, "value": -2323, "keynum": 3, )"
         R"("k0": -4031, "k1": -4032, "k2": -4033})",
         {},
         kOneWayForm},
        {"GetKeyIcon",
         Ask<Apm, std::string>(&Apm::GetKeyIcon, -2331, -2332, -2333),
         R"({"t": 233, "appid": -2331, "orgid": -2332, "code": -2333})",
         {{"pointer", "string", R"("icon 233")", R"("icon 233")"}}},
        {"GetKeyLabel",
         Ask<Apm, std::string>(&Apm::GetKeyLabel, -2351, -2352, -2353),
         R"({"t": 235, "appid": -2351, "orgid": -2352, "code": -2353})",
         {{"label", "string", R"("label 235")", R"("label 235")"}}},
        {"SetDeviceResolution",
         Tell<Apm>(&Apm::SetDeviceResolution, 4000002491u, 4000002492u),
         R"({"t": 249, "width": 4000002491, "heigth": 4000002492})",
         {},
         kOneWayForm},
        {"GetVBResouceAllowed",
         Ask<Apm, bool>(&Apm::GetVBResouceAllowed, -2511),
         R"({"t": 251, "tabid": -2511})",
         {{"allowed", "flag", "-2512", "true"}}},
        {"SetBRAppToBI", Tell<Apm>(&Apm::SetBRAppToBI, -2531), R"({"t": 253, "tabid": -2531})", {}, kOneWayForm},
        {"GetAppType",
         Ask<Apm, int>(&Apm::GetAppType, -2601),
         R"({"t": 260, "tabid": -2601})",
         {{"appType", "int", "-2602", "-2602"}}},
        {"SetBIAppToBR", Tell<Apm>(&Apm::SetBIAppToBR, -2621), R"({"t": 262, "tabid": -2621})", {}, kOneWayForm},
        {"KeyConsumedByBrowser",
         Ask<Apm, bool>(&Apm::KeyConsumedByBrowser, -2631, -2632),
         R"({"t": 263, "tabid": -2631, "keyCode": -2632})",
         {{"consumed", "flag", "-2633", "true"}}},
        {"NotifyDSMCCResponseToAPM",
         Tell<Apm>(&Apm::NotifyDSMCCResponseToAPM, std::string("text 265 of url"), std::string("text 265 of path")),
         R"({"t": 265, "url": "text 265 of url", "path": "text 265 of path"})",
         {},
         kOneWayForm},
    };
    return *rows;
}

// The rows of one form.
const TextRow kTexts[] = {
    {"NotifyDSMCCResponseToAPM",
     [](const std::string& text) { Apm::GetInstance()->NotifyDSMCCResponseToAPM(text, text); },
     R"({"t": 265, "url": "", "path": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"application_manager", "[ipc_apm]", "tolm_apm_adaptor_ipc.cpp",
                                        &Apm::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(ApplicationManagerRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ApplicationManagerRows, Reply, ::testing::ValuesIn(RowsOf(Rows(), "request")), NameOf);
INSTANTIATE_TEST_SUITE_P(ApplicationManagerRows, OneWay, ::testing::ValuesIn(RowsOf(Rows(), "one-way")), NameOf);
INSTANTIATE_TEST_SUITE_P(ApplicationManagerRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ApplicationManagerRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(ApplicationManagerProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(ApplicationManagerProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 13, "service_plugin_to_hbbtv_apm", 1, "platform");
    ExpectTheProtocolsEndpoint("events", 35, "service_hbbtv_to_plugin_apm", 1, "library");
}

TEST(ApplicationManagerProtocol, HasNoTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(
        std::nullopt,
        {201, 203, 205, 207, 209, 210, 211, 220, 222, 224, 226, 232, 233, 235, 249, 251, 253, 260, 262, 263, 265}, "t");
}

TEST(ApplicationManagerProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample("GetChildApps", Ask<Apm, Pairs>(&Apm::GetChildApps, 17, 19),
                              R"({"t": 205, "appid": 17, "orgid": 19})", {"[-77777/-77777 501/19 502/19]"});
}

}  // namespace hbbtv::test
