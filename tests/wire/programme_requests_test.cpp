// Every operation of the programme adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_programme_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmProgrammeAdaptorIpc;

const void* const kProgramme = Handle(0x8000e5f6);

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"Release",
         Tell<Adaptor>(&Adaptor::Release, kProgramme),
         R"({"type": 5, "method": 0, "handle": "0x8000e5f6"})",
         {},
         "one-way"},
        {"GetName",
         Ask<Adaptor, std::string>(&Adaptor::GetName, kProgramme),
         R"({"type": 5, "method": 1, "handle": "0x8000e5f6"})",
         {{"out_name", "string", R"("reply 1")", R"("reply 1")"}}},
        {"SetName",
         Tell<Adaptor>(&Adaptor::SetName, kProgramme, std::string("text 3 of in_name")),
         R"({"type": 5, "method": 3, "handle": "0x8000e5f6", "in_name": "text 3 of in_name"})",
         {}},
        {"GetDescription",
         Ask<Adaptor, std::string>(&Adaptor::GetDescription, kProgramme),
         R"({"type": 5, "method": 7, "handle": "0x8000e5f6"})",
         {{"out_desc", "string", R"("reply 7")", R"("reply 7")"}}},
        {"SetDescription",
         Tell<Adaptor>(&Adaptor::SetDescription, kProgramme, std::string("text 9 of in_desc")),
         R"({"type": 5, "method": 9, "handle": "0x8000e5f6", "in_desc": "text 9 of in_desc"})",
         {}},
        {"GetLongDescription",
         Ask<Adaptor, std::string>(&Adaptor::GetLongDescription, kProgramme),
         R"({"type": 5, "method": 10, "handle": "0x8000e5f6"})",
         {{"out_longDesc", "string", R"("reply 10")", R"("reply 10")"}}},
        {"SetLongDescription",
         Tell<Adaptor>(&Adaptor::SetLongDescription, kProgramme, std::string("text 12 of in_longDesc")),
         R"({"type": 5, "method": 12, "handle": "0x8000e5f6", "in_longDesc": "text 12 of in_longDesc"})",
         {}},
        {"GetStartTime",
         Ask<Adaptor, int>(&Adaptor::GetStartTime, kProgramme),
         R"({"type": 5, "method": 13, "handle": "0x8000e5f6"})",
         {{"out_startTime", "int", "-7013", "-7013"}}},
        {"SetStartTime",
         Tell<Adaptor>(&Adaptor::SetStartTime, kProgramme, -152),
         R"({"type": 5, "method": 15, "handle": "0x8000e5f6", "in_startTime": -152})",
         {}},
        {"GetDuration",
         Ask<Adaptor, int>(&Adaptor::GetDuration, kProgramme),
         R"({"type": 5, "method": 16, "handle": "0x8000e5f6"})",
         {{"out_duration", "int", "-7016", "-7016"}}},
        {"SetDuration",
         Tell<Adaptor>(&Adaptor::SetDuration, kProgramme, -182),
         R"({"type": 5, "method": 18, "handle": "0x8000e5f6", "in_duration": -182})",
         {}},
        {"GetChannelID",
         Ask<Adaptor, std::string>(&Adaptor::GetChannelID, kProgramme),
         R"({"type": 5, "method": 19, "handle": "0x8000e5f6"})",
         {{"out_channelID", "string", R"("reply 19")", R"("reply 19")"}}},
        {"SetChannelID",
         Tell<Adaptor>(&Adaptor::SetChannelID, kProgramme, std::string("text 21 of in_channelID")),
         R"({"type": 5, "method": 21, "handle": "0x8000e5f6", )"
         R"("in_channelID": "text 21 of in_channelID"})",
         {}},
        {"GetProgramID",
         Ask<Adaptor, std::string>(&Adaptor::GetProgramID, kProgramme),
         R"({"type": 5, "method": 28, "handle": "0x8000e5f6"})",
         {{"out_programID", "string", R"("reply 28")", R"("reply 28")"}}},
        {"SetProgramID",
         Tell<Adaptor>(&Adaptor::SetProgramID, kProgramme, std::string("text 30 of in_programID")),
         R"({"type": 5, "method": 30, "handle": "0x8000e5f6", )"
         R"("in_programID": "text 30 of in_programID"})",
         {}},
        {"GetProgramIDType",
         Ask<Adaptor, int>(&Adaptor::GetProgramIDType, kProgramme),
         R"({"type": 5, "method": 31, "handle": "0x8000e5f6"})",
         {{"out_programIDType", "int", "-7031", "-7031"}}},
        {"SetProgramIDType",
         Tell<Adaptor>(&Adaptor::SetProgramIDType, kProgramme, -332),
         R"({"type": 5, "method": 33, "handle": "0x8000e5f6", "in_programIDType": -332})",
         {}},
        {"GetParentalRatings",
         Ask<Adaptor, void*>(&Adaptor::GetParentalRatings, kProgramme),
         R"({"type": 5, "method": 34, "handle": "0x8000e5f6"})",
         {{"out_handle", "pointer", R"("0xfeed0022")", "0xfeed0022"}}},
        {"GetSIDescriptorNum",
         Ask<Adaptor, unsigned>(&Adaptor::GetSIDescriptorNum, kProgramme),
         R"({"type": 5, "method": 76, "handle": "0x8000e5f6"})",
         {{"out_num", "uint", "4100000076", "4100000076"}}},
        {"GetSIDescriptorByIndex",
         Ask<Adaptor, std::string>(&Adaptor::GetSIDescriptorByIndex, kProgramme, 4000000782u),
         R"({"type": 5, "method": 78, "handle": "0x8000e5f6", "in_index": 4000000782})",
         {{"length", "length", "3", R"("a\0b")"},
          {"k0", "int", "-159", nullptr},
          {"k1", "int", "-256", nullptr},
          {"k2", "int", "-158", nullptr}}},
        {"GetSIDescriptorByEventId",
         Tell<Adaptor>(&Adaptor::GetSIDescriptorByEventId, kProgramme, -792, -793, -794),
         R"({"type": 5, "method": 79, "handle": "0x8000e5f6", "in_descTag": -792, )"
         R"("in_descTagExt": -793, "in_priDataSpec": -794})",
         {},
         "one-way"},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"SetName", [](const std::string& text) { Adaptor::GetInstance()->SetName(kProgramme, text); },
     R"({"type": 5, "method": 3, "handle": "0x8000e5f6", "in_name": ""})"},
    {"SetDescription", [](const std::string& text) { Adaptor::GetInstance()->SetDescription(kProgramme, text); },
     R"({"type": 5, "method": 9, "handle": "0x8000e5f6", "in_desc": ""})"},
    {"SetLongDescription",
     [](const std::string& text) { Adaptor::GetInstance()->SetLongDescription(kProgramme, text); },
     R"({"type": 5, "method": 12, "handle": "0x8000e5f6", "in_longDesc": ""})"},
    {"SetChannelID", [](const std::string& text) { Adaptor::GetInstance()->SetChannelID(kProgramme, text); },
     R"({"type": 5, "method": 21, "handle": "0x8000e5f6", "in_channelID": ""})"},
    {"SetProgramID", [](const std::string& text) { Adaptor::GetInstance()->SetProgramID(kProgramme, text); },
     R"({"type": 5, "method": 30, "handle": "0x8000e5f6", "in_programID": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"programme", "[ipc_programme]", "tolm_programme_adaptor_ipc.cpp",
                                        &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(ProgrammeRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ProgrammeRows, Reply, ::testing::ValuesIn(RowsOf(Rows(), "request")), NameOf);
INSTANTIATE_TEST_SUITE_P(ProgrammeRows, OneWay, ::testing::ValuesIn(RowsOf(Rows(), "one-way")), NameOf);
INSTANTIATE_TEST_SUITE_P(ProgrammeRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ProgrammeRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(ProgrammeProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(ProgrammeProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 25, "service_plugin_to_hbbtv_program", 13, "platform");
    ExpectNoEventsInTheProtocol();
}

TEST(ProgrammeProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(5, {0, 1, 3, 7, 9, 10, 12, 13, 15, 16, 18, 19, 21, 28, 30, 31, 33, 34, 76, 78, 79});
}

TEST(ProgrammeProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample("GetSIDescriptorByIndex",
                              Ask<Adaptor, std::string>(&Adaptor::GetSIDescriptorByIndex, Handle(0x6b10), 0u),
                              R"({"type": 5, "method": 78, "handle": "0x6b10", "in_index": 0})", {"\"M\2de\""});
}

}  // namespace hbbtv::test
