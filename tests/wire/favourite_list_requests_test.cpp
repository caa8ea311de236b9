// Every operation of the favourite list adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_favourite_list_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmFavouriteListAdaptorIpc;

const void* const kList = Handle(0x8000e5f6);

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"Release",
         Tell<Adaptor>(&Adaptor::Release, kList),
         R"({"type": 15, "method": 0, "fl_handle": "0x8000e5f6"})",
         {}},
        {"GetLength",
         Ask<Adaptor, unsigned>(&Adaptor::GetLength, kList),
         R"({"type": 15, "method": 1, "fl_handle": "0x8000e5f6"})",
         {{"len", "uint", "4100000001", "4100000001"}}},
        {"GetFavID",
         Ask<Adaptor, std::string>(&Adaptor::GetFavID, kList),
         R"({"type": 15, "method": 2, "fl_handle": "0x8000e5f6"})",
         {{"favId", "string", R"("reply 2")", R"("reply 2")"}}},
        {"SetName",
         Tell<Adaptor>(&Adaptor::SetName, kList, std::string("text 3 of name")),
         R"({"type": 15, "method": 3, "fl_handle": "0x8000e5f6", "name": "text 3 of name"})",
         {}},
        {"GetName",
         Ask<Adaptor, std::string>(&Adaptor::GetName, kList),
         R"({"type": 15, "method": 4, "fl_handle": "0x8000e5f6"})",
         {{"name", "string", R"("reply 4")", R"("reply 4")"}}},
        {"Item",
         Ask<Adaptor, void*>(&Adaptor::Item, kList, -501),
         R"({"type": 15, "method": 5, "fl_handle": "0x8000e5f6", "index": -501})",
         {{"channel", "pointer", R"("0xfeed0005")", "0xfeed0005"}}},
        {"GetChannel",
         Ask<Adaptor, void*>(&Adaptor::GetChannel, kList, std::string("text 6 of channelID")),
         R"({"type": 15, "method": 6, "fl_handle": "0x8000e5f6", )"
         R"("channelID": "text 6 of channelID"})",
         {{"channel", "pointer", R"("0xfeed0006")", "0xfeed0006"}}},
        {"GetChannelByTriplet",
         Ask<Adaptor, void*>(&Adaptor::GetChannelByTriplet, kList, -701, -702, -703),
         R"({"type": 15, "method": 7, "fl_handle": "0x8000e5f6", "onid": -701, "tsid": -702, )"
         R"("sid": -703})",
         {{"channel", "pointer", R"("0xfeed0007")", "0xfeed0007"}}},
        {"GetChannelBySourceID",
         Ask<Adaptor, void*>(&Adaptor::GetChannelBySourceID, kList, -801),
         R"({"type": 15, "method": 8, "fl_handle": "0x8000e5f6", "sourceID": -801})",
         {{"channel", "pointer", R"("0xfeed0008")", "0xfeed0008"}}},
        {"InsertBefore",
         Tell<Adaptor>(&Adaptor::InsertBefore, kList, -901, std::string("text 9 of ccid")),
         R"({"type": 15, "method": 9, "fl_handle": "0x8000e5f6", "index": -901, )"
         R"("ccid": "text 9 of ccid"})",
         {}},
        {"Remove",
         Tell<Adaptor>(&Adaptor::Remove, kList, -1001),
         R"({"type": 15, "method": 10, "fl_handle": "0x8000e5f6", "index": -1001})",
         {}},
        {"Commit",
         Tell<Adaptor>(&Adaptor::Commit, kList),
         R"({"type": 15, "method": 11, "fl_handle": "0x8000e5f6"})",
         {}},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"SetName", [](const std::string& text) { Adaptor::GetInstance()->SetName(kList, text); },
     R"({"type": 15, "method": 3, "fl_handle": "0x8000e5f6", "name": ""})"},
    {"GetChannel",
     [](const std::string& text) {
         void* handle = nullptr;
         Adaptor::GetInstance()->GetChannel(kList, text, handle);
     },
     R"({"type": 15, "method": 6, "fl_handle": "0x8000e5f6", "channelID": ""})"},
    {"InsertBefore", [](const std::string& text) { Adaptor::GetInstance()->InsertBefore(kList, 3, text); },
     R"({"type": 15, "method": 9, "fl_handle": "0x8000e5f6", "index": 3, "ccid": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"favourite_list", "[ipc_videobroadcast]", "tolm_favourite_list_adaptor_ipc.cpp",
                                        &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(FavouriteListRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(FavouriteListRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(FavouriteListRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(FavouriteListRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(FavouriteListProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(FavouriteListProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 33, "service_plugin_to_hbbtv_vb_fav_list", 5, "platform");
    ExpectNoEventsInTheProtocol();
}

TEST(FavouriteListProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(15, Codes(0, 11));
}

TEST(FavouriteListProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample("InsertBefore",
                              Tell<Adaptor>(&Adaptor::InsertBefore, Handle(0x6b30), 0, std::string("ccid:7")),
                              R"({"type": 15, "method": 9, "fl_handle": "0x6b30", "index": 0, "ccid": "ccid:7"})", {});
}

}  // namespace hbbtv::test
