// Every operation of the AV component adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_av_component_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmAVComponentAdaptorIpc;

const void* const kComponent = Handle(0x8000f7a8);

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"Release",
         Tell<Adaptor>(&Adaptor::Release, kComponent),
         R"({"type": 11, "method": 0, "handle": "0x8000f7a8"})",
         {},
         "one-way"},
        {"GetComponentTag",
         Ask<Adaptor, int>(&Adaptor::GetComponentTag, kComponent),
         R"({"type": 11, "method": 1, "handle": "0x8000f7a8"})",
         {{"tag", "int", "-7001", "-7001"}}},
        {"GetPid",
         Ask<Adaptor, int>(&Adaptor::GetPid, kComponent),
         R"({"type": 11, "method": 2, "handle": "0x8000f7a8"})",
         {{"pid", "int", "-7002", "-7002"}}},
        {"GetType",
         Ask<Adaptor, int>(&Adaptor::GetType, kComponent),
         R"({"type": 11, "method": 3, "handle": "0x8000f7a8"})",
         {{"type", "int", "-7003", "-7003"}}},
        {"GetEncoding",
         Ask<Adaptor, std::string>(&Adaptor::GetEncoding, kComponent),
         R"({"type": 11, "method": 4, "handle": "0x8000f7a8"})",
         {{"encoding", "string", R"("reply 4")", R"("reply 4")"}}},
        {"GetEncrypted",
         Ask<Adaptor, bool>(&Adaptor::GetEncrypted, kComponent),
         R"({"type": 11, "method": 5, "handle": "0x8000f7a8"})",
         {{"encrypted", "bool", "false", "false"}}},
        {"GetAspectRatio",
         Ask<Adaptor, double>(&Adaptor::GetAspectRatio, kComponent),
         R"({"type": 11, "method": 6, "handle": "0x8000f7a8"})",
         {{"aspect_ratio", "double", "-6.5", "-6.5"}}},
        {"GetLanguage",
         Ask<Adaptor, std::string>(&Adaptor::GetLanguage, kComponent),
         R"({"type": 11, "method": 7, "handle": "0x8000f7a8"})",
         {{"language", "string", R"("reply 7")", R"("reply 7")"}}},
        {"GetAudioDescription",
         Ask<Adaptor, bool>(&Adaptor::GetAudioDescription, kComponent),
         R"({"type": 11, "method": 8, "handle": "0x8000f7a8"})",
         {{"desc", "bool", "false", "false"}}},
        {"GetAudioChannelNum",
         [] {
             unsigned num = static_cast<unsigned>(Before<int>());
             const int status = Adaptor::GetInstance()->GetAudioChannelNum(kComponent, num);
             return Outcome{status, {Show(static_cast<int>(num))}};
         },
         R"({"type": 11, "method": 9, "handle": "0x8000f7a8"})",
         {{"num", "int", "-7009", "-7009"}}},
        {"GetHearingImpaired",
         Ask<Adaptor, bool>(&Adaptor::GetHearingImpaired, kComponent),
         R"({"type": 11, "method": 10, "handle": "0x8000f7a8"})",
         {{"impaired", "bool", "false", "false"}}},
        {"GetLabel",
         Ask<Adaptor, std::string>(&Adaptor::GetLabel, kComponent),
         R"({"type": 11, "method": 11, "handle": "0x8000f7a8"})",
         {{"label", "string", R"("reply 11")", R"("reply 11")"}}},
    };
    return *rows;
}

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"av_component", "[ipc_avcomponent]", "tolm_av_component_adaptor_ipc.cpp",
                                        &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(AVComponentRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(AVComponentRows, Reply, ::testing::ValuesIn(RowsOf(Rows(), "request")), NameOf);
INSTANTIATE_TEST_SUITE_P(AVComponentRows, OneWay, ::testing::ValuesIn(RowsOf(Rows(), "one-way")), NameOf);
INSTANTIATE_TEST_SUITE_P(AVComponentRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);

// No operation takes a text.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Texts);

TEST(AVComponentProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(AVComponentProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 15, "service_plugin_to_hbbtv_av_com", 14, "platform");
    ExpectNoEventsInTheProtocol();
}

TEST(AVComponentProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(11, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
}

TEST(AVComponentProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample("GetType", Ask<Adaptor, int>(&Adaptor::GetType, Handle(0x7c40)),
                              R"({"type": 11, "method": 3, "handle": "0x7c40"})", {"1"});
}

}  // namespace hbbtv::test
