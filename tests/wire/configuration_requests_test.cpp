// Every operation of the configuration adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_configuration_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmConfigurationAdaptorIpc;

void Receive(const TolmConfigurationEvent&, TolmConfigurationEventInfo, const void*) {}

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"GetPreferredAudioLanguage",
         Ask<Adaptor, std::string>(&Adaptor::GetPreferredAudioLanguage),
         R"({"type": 9, "method": 0})",
         {{"pref_audio_language", "string", R"("reply 0")", R"("reply 0")"}}},
        {"SetPreferredAudioLanguage",
         Tell<Adaptor>(&Adaptor::SetPreferredAudioLanguage, std::string("text 1 of pref_audio_language")),
         R"({"type": 9, "method": 1, "pref_audio_language": "text 1 of pref_audio_language"})",
         {}},
        {"GetPreferredSubtitleLanguage",
         Ask<Adaptor, std::string>(&Adaptor::GetPreferredSubtitleLanguage),
         R"({"type": 9, "method": 2})",
         {{"pref_sub_language", "string", R"("reply 2")", R"("reply 2")"}}},
        {"SetPreferredSubtitleLanguage",
         Tell<Adaptor>(&Adaptor::SetPreferredSubtitleLanguage, std::string("text 3 of pref_sub_language")),
         R"({"type": 9, "method": 3, "pref_sub_language": "text 3 of pref_sub_language"})",
         {}},
        {"GetPreferredUILanguage",
         Ask<Adaptor, std::string>(&Adaptor::GetPreferredUILanguage),
         R"({"type": 9, "method": 4})",
         {{"pref_ui_language", "string", R"("reply 4")", R"("reply 4")"}}},
        {"SetPreferredUILanguage",
         Tell<Adaptor>(&Adaptor::SetPreferredUILanguage, std::string("text 5 of pref_ui_language")),
         R"({"type": 9, "method": 5, "pref_ui_language": "text 5 of pref_ui_language"})",
         {}},
        {"GetCountryId",
         Ask<Adaptor, std::string>(&Adaptor::GetCountryId),
         R"({"type": 9, "method": 6})",
         {{"id", "string", R"("reply 6")", R"("reply 6")"}}},
        {"SetCountryId",
         Tell<Adaptor>(&Adaptor::SetCountryId, std::string("text 7 of id")),
         R"({"type": 9, "method": 7, "id": "text 7 of id"})",
         {}},
        {"GetRegionId",
         Ask<Adaptor, unsigned>(&Adaptor::GetRegionId),
         R"({"type": 9, "method": 8})",
         {{"reg_id", "uint", "4100000008", "4100000008"}}},
        {"SetRegionId",
         Tell<Adaptor>(&Adaptor::SetRegionId, 4000000091u),
         R"({"type": 9, "method": 9, "reg_id": 4000000091})",
         {}},
        {"GetPvrPolicy",
         Ask<Adaptor, int>(&Adaptor::GetPvrPolicy),
         R"({"type": 9, "method": 10})",
         {{"pvr_policy", "int", "-7010", "-7010"}}},
        {"SetPvrPolicy",
         Tell<Adaptor>(&Adaptor::SetPvrPolicy, -111),
         R"({"type": 9, "method": 11, "pvr_policy": -111})",
         {}},
        {"GetPvrSaveEpisodes",
         Ask<Adaptor, unsigned>(&Adaptor::GetPvrSaveEpisodes),
         R"({"type": 9, "method": 12})",
         {{"epis", "uint", "4100000012", "4100000012"}}},
        {"SetPvrSaveEpisodes",
         Tell<Adaptor>(&Adaptor::SetPvrSaveEpisodes, 4000000131u),
         R"({"type": 9, "method": 13, "epis": 4000000131})",
         {}},
        {"GetPvrSaveDays",
         Ask<Adaptor, unsigned>(&Adaptor::GetPvrSaveDays),
         R"({"type": 9, "method": 14})",
         {{"days", "uint", "4100000014", "4100000014"}}},
        {"SetPvrSaveDays",
         Tell<Adaptor>(&Adaptor::SetPvrSaveDays, 4000000151u),
         R"({"type": 9, "method": 15, "days": 4000000151})",
         {}},
        {"GetPvrStartPadding",
         Ask<Adaptor, unsigned>(&Adaptor::GetPvrStartPadding),
         R"({"type": 9, "method": 16})",
         {{"start_pad", "uint", "4100000016", "4100000016"}}},
        {"SetPvrStartPadding",
         Tell<Adaptor>(&Adaptor::SetPvrStartPadding, 4000000171u),
         R"({"type": 9, "method": 17, "start_pad": 4000000171})",
         {}},
        {"GetPvrEndPadding",
         Ask<Adaptor, unsigned>(&Adaptor::GetPvrEndPadding),
         R"({"type": 9, "method": 18})",
         {{"end_pad", "uint", "4100000018", "4100000018"}}},
        {"SetPvrEndPadding",
         Tell<Adaptor>(&Adaptor::SetPvrEndPadding, 4000000191u),
         R"({"type": 9, "method": 19, "end_pad": 4000000191})",
         {}},
        {"GetPreferredTimeShiftMode",
         [] {
             int mode = static_cast<int>(Before<unsigned>());
             const int status = Adaptor::GetInstance()->GetPreferredTimeShiftMode(mode);
             return Outcome{status, {Show(static_cast<unsigned>(mode))}};
         },
         R"({"type": 9, "method": 20})",
         {{"timeshift_mode", "uint", "4100000020", "4100000020"}}},
        {"SetPreferredTimeShiftMode",
         Tell<Adaptor>(&Adaptor::SetPreferredTimeShiftMode, -211),
         R"({"type": 9, "method": 21, "timeshift_mode": -211})",
         {}},
        {"GetText",
         Ask<Adaptor, std::string>(&Adaptor::GetText, -221),
         R"({"type": 9, "method": 22, "key_type": -221})",
         {{"info", "string", R"("reply 22")", R"("reply 22")"}}},
        {"SetText",
         Tell<Adaptor>(&Adaptor::SetText, -221, std::string("text 22 of info")),
         R"({"type": 9, "method": 22, "info": "text 22 of info"})",
         {}},
        {"GetAudioDescriptionEnable",
         Ask<Adaptor, bool>(&Adaptor::GetAudioDescriptionEnable),
         R"({"type": 9, "method": 24})",
         {{"enable", "bool", "false", "false"}}},
        {"GetAudioHearingImpaired",
         Ask<Adaptor, bool>(&Adaptor::GetAudioHearingImpaired),
         R"({"type": 9, "method": 25})",
         {{"enable", "bool", "false", "false"}}},
        {"GetDeviceIdContent",
         [] {
             std::string serial = Before<std::string>();
             std::string product = Before<std::string>();
             std::string requestTime = Before<std::string>();
             const int status = Adaptor::GetInstance()->GetDeviceIdContent(serial, product, requestTime);
             return Outcome{status, {Show(serial), Show(product), Show(requestTime)}};
         },
         R"({"type": 9, "method": 26})",
         {{"serial", "string", R"("reply 26 of serial")", R"("reply 26 of serial")"},
          {"product", "string", R"("reply 26 of product")", R"("reply 26 of product")"},
          {"request_time", "string", R"("reply 26 of request_time")", R"("reply 26 of request_time")"}}},
        {"GetDeviceIdEnable",
         Ask<Adaptor, bool>(&Adaptor::GetDeviceIdEnable),
         R"({"type": 9, "method": 27})",
         {{"enable", "bool", "false", "false"}}},
        {"GetSubtitleEnable",
         Ask<Adaptor, bool>(&Adaptor::GetSubtitleEnable),
         R"({"type": 9, "method": 28})",
         {{"enable", "bool", "false", "false"}}},
        {"ReplaceUIElement",
         Tell<Adaptor>(&Adaptor::ReplaceUIElement, 4000000311u, 4000000312u, -313),
         R"({"type": 9, "method": 31, "size": 4000000311, "index": 4000000312, "ui": -313})",
         {}},
        {"GetDttNetworkIds",
         Ask<Adaptor, std::vector<int>>(&Adaptor::GetDttNetworkIds),
         R"({"type": 9, "method": 32})",
         {{"num", "count", "3", "[-77777 -7320 -7321 -7322]"},
          {"k0", "int", "-7320", nullptr},
          {"k1", "int", "-7321", nullptr},
          {"k2", "int", "-7322", nullptr}}},
        {"RegisterCallback", Tell<Adaptor>(&Adaptor::RegisterCallback, &Receive), R"({"type": 9, "method": 33})", {}},
        {"UnregisterCallback", Tell<Adaptor>(&Adaptor::UnregisterCallback), R"({"type": 9, "method": 34})", {}},
        {"GetRatingAge",
         Ask<Adaptor, int>(&Adaptor::GetRatingAge),
         R"({"type": 9, "method": 35})",
         {{"age", "int", "-7035", "-7035"}}},
        {"GetDNTPolicy",
         Ask<Adaptor, int>(&Adaptor::GetDNTPolicy),
         R"({"type": 9, "method": 36})",
         {{"dnt", "int", "-7036", "-7036"}}},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"SetPreferredAudioLanguage",
     [](const std::string& text) { Adaptor::GetInstance()->SetPreferredAudioLanguage(text); },
     R"({"type": 9, "method": 1, "pref_audio_language": ""})"},
    {"SetPreferredSubtitleLanguage",
     [](const std::string& text) { Adaptor::GetInstance()->SetPreferredSubtitleLanguage(text); },
     R"({"type": 9, "method": 3, "pref_sub_language": ""})"},
    {"SetPreferredUILanguage", [](const std::string& text) { Adaptor::GetInstance()->SetPreferredUILanguage(text); },
     R"({"type": 9, "method": 5, "pref_ui_language": ""})"},
    {"SetCountryId", [](const std::string& text) { Adaptor::GetInstance()->SetCountryId(text); },
     R"({"type": 9, "method": 7, "id": ""})"},
    {"SetText", [](const std::string& text) { Adaptor::GetInstance()->SetText(3, text); },
     R"({"type": 9, "method": 22, "info": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"configuration", "[ipc_configure]", "tolm_configuration_adaptor_ipc.cpp",
                                        &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(ConfigurationRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ConfigurationRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ConfigurationRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ConfigurationRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(ConfigurationProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(ConfigurationProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 19, "service_plugin_to_hbbtv_conf", 12, "platform");
    ExpectTheProtocolsEndpoint("events", 41, "service_hbbtv_to_plugin_conf", 12, "library");
}

TEST(ConfigurationProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(9, {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17,
                                18, 19, 20, 21, 22, 22, 24, 25, 26, 27, 28, 31, 32, 33, 34, 35, 36});
}

TEST(ConfigurationProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample("GetDttNetworkIds", Ask<Adaptor, std::vector<int>>(&Adaptor::GetDttNetworkIds),
                              R"({"type": 9, "method": 32})", {"[-77777 12289 12290]"});
}

}  // namespace hbbtv::test
