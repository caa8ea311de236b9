// Every operation of the channel list adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_channel_list_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmChannelListAdaptorIpc;

const void* const kList = Handle(0x8000c3d4);

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"Release",
         Tell<Adaptor>(&Adaptor::Release, kList),
         R"({"type": 14, "method": 0, "cl_handle": "0x8000c3d4"})",
         {}},
        {"GetLength",
         Ask<Adaptor, unsigned>(&Adaptor::GetLength, kList),
         R"({"type": 14, "method": 1, "cl_handle": "0x8000c3d4"})",
         {{"len", "uint", "4100000001", "4100000001"}}},
        {"Item",
         Ask<Adaptor, void*>(&Adaptor::Item, kList, -201),
         R"({"type": 14, "method": 2, "cl_handle": "0x8000c3d4", "index": -201})",
         {{"channel", "pointer", R"("0xfeed0002")", "0xfeed0002"}}},
        {"GetChannel",
         Ask<Adaptor, void*>(&Adaptor::GetChannel, kList, std::string("text 3 of channelID")),
         R"({"type": 14, "method": 3, "cl_handle": "0x8000c3d4", )"
         R"("channelID": "text 3 of channelID"})",
         {{"channel", "pointer", R"("0xfeed0003")", "0xfeed0003"}}},
        {"GetChannelByTriplet",
         Ask<Adaptor, void*>(&Adaptor::GetChannelByTriplet, kList, -401, -402, -403, -404),
         R"({"type": 14, "method": 4, "cl_handle": "0x8000c3d4", "onid": -401, "tsid": -402, )"
         R"("sid": -403, "nid": -404})",
         {{"channel", "pointer", R"("0xfeed0004")", "0xfeed0004"}}},
        {"GetChannelBySourceID",
         Ask<Adaptor, void*>(&Adaptor::GetChannelBySourceID, kList, -501),
         R"({"type": 14, "method": 5, "cl_handle": "0x8000c3d4", "sourceID": -501})",
         {{"channel", "pointer", R"("0xfeed0005")", "0xfeed0005"}}},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"GetChannel",
     [](const std::string& text) {
         void* handle = nullptr;
         Adaptor::GetInstance()->GetChannel(kList, text, handle);
     },
     R"({"type": 14, "method": 3, "cl_handle": "0x8000c3d4", "channelID": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"channel_list", "[ipc_videobroadcast]", "tolm_channel_list_adaptor_ipc.cpp",
                                        &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(ChannelListRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ChannelListRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ChannelListRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ChannelListRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(ChannelListProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(ChannelListProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 32, "service_plugin_to_hbbtv_vb_chn_list", 4, "platform");
    ExpectNoEventsInTheProtocol();
}

TEST(ChannelListProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(14, Codes(0, 5));
}

TEST(ChannelListProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample(
        "GetChannelByTriplet",
        Ask<Adaptor, void*>(&Adaptor::GetChannelByTriplet, Handle(0x5a20), 8442, 1019, 10301, 8442),
        R"({"type": 14, "method": 4, "cl_handle": "0x5a20", "onid": 8442, "tsid": 1019, "sid": 10301, "nid": 8442})",
        {"0x4f10"});
}

}  // namespace hbbtv::test
