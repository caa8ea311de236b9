// Every operation of the channel adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_channel_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmChannelAdaptorIpc;

const void* const kChannel = Handle(0x8000a1b2);

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"Release",
         Tell<Adaptor>(&Adaptor::Release, kChannel),
         R"({"type": 12, "method": 0, "c_handle": "0x8000a1b2"})",
         {}},
        {"GetChannelType",
         Ask<Adaptor, int>(&Adaptor::GetChannelType, kChannel),
         R"({"type": 12, "method": 1, "c_handle": "0x8000a1b2"})",
         {{"channelType", "int", "-7001", "-7001"}}},
        {"GetIdType",
         Ask<Adaptor, int>(&Adaptor::GetIdType, kChannel),
         R"({"type": 12, "method": 2, "c_handle": "0x8000a1b2"})",
         {{"idType", "int", "-7002", "-7002"}}},
        {"GetCcid",
         Ask<Adaptor, std::string>(&Adaptor::GetCcid, kChannel),
         R"({"type": 12, "method": 3, "c_handle": "0x8000a1b2"})",
         {{"ccid", "string", R"("reply 3")", R"("reply 3")"}}},
        {"GetTunerID",
         Ask<Adaptor, std::string>(&Adaptor::GetTunerID, kChannel),
         R"({"type": 12, "method": 4, "c_handle": "0x8000a1b2"})",
         {{"tunerId", "string", R"("reply 4")", R"("reply 4")"}}},
        {"GetOnid",
         Ask<Adaptor, int>(&Adaptor::GetOnid, kChannel),
         R"({"type": 12, "method": 5, "c_handle": "0x8000a1b2"})",
         {{"onid", "int", "-7005", "-7005"}}},
        {"GetNid",
         Ask<Adaptor, int>(&Adaptor::GetNid, kChannel),
         R"({"type": 12, "method": 6, "c_handle": "0x8000a1b2"})",
         {{"nid", "int", "-7006", "-7006"}}},
        {"GetTsid",
         Ask<Adaptor, int>(&Adaptor::GetTsid, kChannel),
         R"({"type": 12, "method": 7, "c_handle": "0x8000a1b2"})",
         {{"tsid", "int", "-7007", "-7007"}}},
        {"GetSid",
         Ask<Adaptor, int>(&Adaptor::GetSid, kChannel),
         R"({"type": 12, "method": 8, "c_handle": "0x8000a1b2"})",
         {{"sid", "int", "-7008", "-7008"}}},
        {"GetSourceID",
         Ask<Adaptor, int>(&Adaptor::GetSourceID, kChannel),
         R"({"type": 12, "method": 9, "c_handle": "0x8000a1b2"})",
         {{"sourceId", "int", "-7009", "-7009"}}},
        {"GetFreq",
         Ask<Adaptor, int>(&Adaptor::GetFreq, kChannel),
         R"({"type": 12, "method": 10, "c_handle": "0x8000a1b2"})",
         {{"freq", "int", "-7010", "-7010"}}},
        {"GetCni",
         Ask<Adaptor, int>(&Adaptor::GetCni, kChannel),
         R"({"type": 12, "method": 11, "c_handle": "0x8000a1b2"})",
         {{"cni", "int", "-7011", "-7011"}}},
        {"SetName",
         Tell<Adaptor>(&Adaptor::SetName, kChannel, std::string("text 12 of name")),
         R"({"type": 12, "method": 12, "c_handle": "0x8000a1b2", "name": "text 12 of name"})",
         {}},
        {"GetName",
         Ask<Adaptor, std::string>(&Adaptor::GetName, kChannel),
         R"({"type": 12, "method": 13, "c_handle": "0x8000a1b2"})",
         {{"name", "string", R"("reply 13")", R"("reply 13")"}}},
        {"GetMajorChannel",
         Ask<Adaptor, int>(&Adaptor::GetMajorChannel, kChannel),
         R"({"type": 12, "method": 14, "c_handle": "0x8000a1b2"})",
         {{"majorChannel", "int", "-7014", "-7014"}}},
        {"GetMinorChannel",
         Ask<Adaptor, int>(&Adaptor::GetMinorChannel, kChannel),
         R"({"type": 12, "method": 15, "c_handle": "0x8000a1b2"})",
         {{"minorChannel", "int", "-7015", "-7015"}}},
        {"GetDsd",
         Ask<Adaptor, std::string>(&Adaptor::GetDsd, kChannel),
         R"({"type": 12, "method": 16, "c_handle": "0x8000a1b2"})",
         {{"dsd", "string", R"("reply 16")", R"("reply 16")"}}},
        {"GetFavourite",
         Ask<Adaptor, bool>(&Adaptor::GetFavourite, kChannel),
         R"({"type": 12, "method": 17, "c_handle": "0x8000a1b2"})",
         {{"favourite", "bool", "false", "false"}}},
        {"GetFavIDsNum",
         Ask<Adaptor, unsigned>(&Adaptor::GetFavIDsNum, kChannel),
         R"({"type": 12, "method": 18, "c_handle": "0x8000a1b2"})",
         {{"num", "uint", "4100000018", "4100000018"}}},
        {"GetFavIDsNameByIndex",
         Ask<Adaptor, std::string>(&Adaptor::GetFavIDsNameByIndex, kChannel, 4000000191u),
         R"({"type": 12, "method": 19, "c_handle": "0x8000a1b2", "index": 4000000191})",
         {{"name", "string", R"("reply 19")", R"("reply 19")"}}},
        {"GetLocked",
         Ask<Adaptor, bool>(&Adaptor::GetLocked, kChannel),
         R"({"type": 12, "method": 20, "c_handle": "0x8000a1b2"})",
         {{"locked", "bool", "false", "false"}}},
        {"GetManualBlock",
         Ask<Adaptor, bool>(&Adaptor::GetManualBlock, kChannel),
         R"({"type": 12, "method": 21, "c_handle": "0x8000a1b2"})",
         {{"manualBlock", "bool", "false", "false"}}},
        {"GetIpBroadcastID",
         Ask<Adaptor, std::string>(&Adaptor::GetIpBroadcastID, kChannel),
         R"({"type": 12, "method": 22, "c_handle": "0x8000a1b2"})",
         {{"ipBroadcastId", "string", R"("reply 22")", R"("reply 22")"}}},
        {"GetChannelMaxBitRate",
         Ask<Adaptor, unsigned>(&Adaptor::GetChannelMaxBitRate, kChannel),
         R"({"type": 12, "method": 23, "c_handle": "0x8000a1b2"})",
         {{"maxBitrate", "uint", "4100000023", "4100000023"}}},
        {"GetChannelTTR",
         Ask<Adaptor, int>(&Adaptor::GetChannelTTR, kChannel),
         R"({"type": 12, "method": 24, "c_handle": "0x8000a1b2"})",
         {{"ttr", "int", "-7024", "-7024"}}},
        {"GetRecordable",
         Ask<Adaptor, bool>(&Adaptor::GetRecordable, kChannel),
         R"({"type": 12, "method": 25, "c_handle": "0x8000a1b2"})",
         {{"recordable", "bool", "false", "false"}}},
        {"SetLongName",
         Tell<Adaptor>(&Adaptor::SetLongName, kChannel, std::string("text 26 of longname")),
         R"({"type": 12, "method": 26, "c_handle": "0x8000a1b2", "longname": "text 26 of longname"})",
         {}},
        {"GetLongName",
         Ask<Adaptor, std::string>(&Adaptor::GetLongName, kChannel),
         R"({"type": 12, "method": 27, "c_handle": "0x8000a1b2"})",
         {{"longname", "string", R"("reply 27")", R"("reply 27")"}}},
        {"SetDescription",
         Tell<Adaptor>(&Adaptor::SetDescription, kChannel, std::string("text 28 of description")),
         R"({"type": 12, "method": 28, "c_handle": "0x8000a1b2", )"
         R"("description": "text 28 of description"})",
         {}},
        {"GetDescription",
         Ask<Adaptor, std::string>(&Adaptor::GetDescription, kChannel),
         R"({"type": 12, "method": 29, "c_handle": "0x8000a1b2"})",
         {{"description", "string", R"("reply 29")", R"("reply 29")"}}},
        {"GetAuthorized",
         Ask<Adaptor, bool>(&Adaptor::GetAuthorized, kChannel),
         R"({"type": 12, "method": 30, "c_handle": "0x8000a1b2"})",
         {{"authorized", "bool", "false", "false"}}},
        {"SetGenreNum",
         Tell<Adaptor>(&Adaptor::SetGenreNum, kChannel, 4000000311u),
         R"({"type": 12, "method": 31, "c_handle": "0x8000a1b2", "num": 4000000311})",
         {}},
        {"SetGenreByIndex",
         Tell<Adaptor>(&Adaptor::SetGenreByIndex, kChannel, 4000000321u, std::string("text 32 of genre")),
         R"({"type": 12, "method": 32, "c_handle": "0x8000a1b2", "index": 4000000321, )"
         R"("genre": "text 32 of genre"})",
         {}},
        {"GetGenreNum",
         Ask<Adaptor, unsigned>(&Adaptor::GetGenreNum, kChannel),
         R"({"type": 12, "method": 33, "c_handle": "0x8000a1b2"})",
         {{"num", "uint", "4100000033", "4100000033"}}},
        {"GetGenreByIndex",
         Ask<Adaptor, std::string>(&Adaptor::GetGenreByIndex, kChannel, 4000000341u),
         R"({"type": 12, "method": 34, "c_handle": "0x8000a1b2", "index": 4000000341})",
         {{"genre", "string", R"("reply 34")", R"("reply 34")"}}},
        {"SetHidden",
         Tell<Adaptor>(&Adaptor::SetHidden, kChannel, false),
         R"({"type": 12, "method": 35, "c_handle": "0x8000a1b2", "hidden": false})",
         {}},
        {"GetHidden",
         Ask<Adaptor, bool>(&Adaptor::GetHidden, kChannel),
         R"({"type": 12, "method": 36, "c_handle": "0x8000a1b2"})",
         {{"hidden", "bool", "false", "false"}}},
        {"SetLogoURL",
         Tell<Adaptor>(&Adaptor::SetLogoURL, kChannel, std::string("text 37 of url")),
         R"({"type": 12, "method": 37, "c_handle": "0x8000a1b2", "url": "text 37 of url"})",
         {}},
        {"GetLogoURL",
         Ask<Adaptor, std::string>(&Adaptor::GetLogoURL, kChannel),
         R"({"type": 12, "method": 38, "c_handle": "0x8000a1b2"})",
         {{"url", "string", R"("reply 38")", R"("reply 38")"}}},
        {"GetField",
         Ask<Adaptor, std::string>(&Adaptor::GetField, kChannel, std::string("text 39 of fieldId")),
         R"({"type": 12, "method": 39, "c_handle": "0x8000a1b2", "fieldId": "text 39 of fieldId"})",
         {{"field", "string", R"("reply 39")", R"("reply 39")"}}},
        {"GetLogo",
         Ask<Adaptor, std::string>(&Adaptor::GetLogo, kChannel, -4001, -4002),
         R"({"type": 12, "method": 40, "c_handle": "0x8000a1b2", "width": -4001, "height": -4002})",
         {{"logo", "string", R"("reply 40")", R"("reply 40")"}}},
        {"GetTerminalChannel",
         Ask<Adaptor, int>(&Adaptor::GetTerminalChannel, kChannel),
         R"({"type": 12, "method": 41, "c_handle": "0x8000a1b2"})",
         {{"terminalChannel", "int", "-7041", "-7041"}}},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"SetName", [](const std::string& text) { Adaptor::GetInstance()->SetName(kChannel, text); },
     R"({"type": 12, "method": 12, "c_handle": "0x8000a1b2", "name": ""})"},
    {"SetLongName", [](const std::string& text) { Adaptor::GetInstance()->SetLongName(kChannel, text); },
     R"({"type": 12, "method": 26, "c_handle": "0x8000a1b2", "longname": ""})"},
    {"SetDescription", [](const std::string& text) { Adaptor::GetInstance()->SetDescription(kChannel, text); },
     R"({"type": 12, "method": 28, "c_handle": "0x8000a1b2", "description": ""})"},
    {"SetGenreByIndex", [](const std::string& text) { Adaptor::GetInstance()->SetGenreByIndex(kChannel, 3u, text); },
     R"({"type": 12, "method": 32, "c_handle": "0x8000a1b2", "index": 3, "genre": ""})"},
    {"SetLogoURL", [](const std::string& text) { Adaptor::GetInstance()->SetLogoURL(kChannel, text); },
     R"({"type": 12, "method": 37, "c_handle": "0x8000a1b2", "url": ""})"},
    {"GetField",
     [](const std::string& text) {
         std::string result;
         Adaptor::GetInstance()->GetField(kChannel, text, result);
     },
     R"({"type": 12, "method": 39, "c_handle": "0x8000a1b2", "fieldId": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"channel", "[ipc_videobroadcast]", "tolm_channel_adaptor_ipc.cpp",
                                        &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(ChannelRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ChannelRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ChannelRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ChannelRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(ChannelProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(ChannelProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 30, "service_plugin_to_hbbtv_vb_chn", 2, "platform");
    ExpectNoEventsInTheProtocol();
}

TEST(ChannelProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(12, Codes(0, 41));
}

TEST(ChannelProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample("SetGenreByIndex",
                              Tell<Adaptor>(&Adaptor::SetGenreByIndex, Handle(0x4f10), 2u, std::string("news")),
                              R"({"type": 12, "method": 32, "c_handle": "0x4f10", "index": 2, "genre": "news"})", {});
}

}  // namespace hbbtv::test
