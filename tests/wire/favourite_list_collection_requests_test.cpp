// Every operation of the adaptor of the collection of favourite lists: its call, its request and its reply, written
// out.

#include "ipc/src/plugin/tolm_favourite_list_collection_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmFavouriteListCollectionAdaptorIpc;

const void* const kCollection = Handle(0x80001728);

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"Release",
         Tell<Adaptor>(&Adaptor::Release, kCollection),
         R"({"type": 15, "method": 12, "flc_handle": "0x80001728"})",
         {}},
        {"GetLength",
         Ask<Adaptor, unsigned>(&Adaptor::GetLength, kCollection),
         R"({"type": 15, "method": 13, "flc_handle": "0x80001728"})",
         {{"len", "uint", "4100000013", "4100000013"}}},
        {"Item",
         Ask<Adaptor, void*>(&Adaptor::Item, kCollection, -1401),
         R"({"type": 15, "method": 14, "flc_handle": "0x80001728", "index": -1401})",
         {{"list", "pointer", R"("0xfeed0014")", "0xfeed0014"}}},
        {"GetFavouriteList",
         Ask<Adaptor, void*>(&Adaptor::GetFavouriteList, kCollection, std::string("text 15 of favId")),
         R"({"type": 15, "method": 15, "flc_handle": "0x80001728", "favId": "text 15 of favId"})",
         {{"list", "pointer", R"("0xfeed0015")", "0xfeed0015"}}},
        {"CreateFavouriteList",
         Ask<Adaptor, void*>(&Adaptor::CreateFavouriteList, kCollection, std::string("text 16 of name")),
         R"({"type": 15, "method": 16, "flc_handle": "0x80001728", "name": "text 16 of name"})",
         {{"list", "pointer", R"("0xfeed0016")", "0xfeed0016"}}},
        {"Remove",
         Tell<Adaptor>(&Adaptor::Remove, kCollection, -1701),
         R"({"type": 15, "method": 17, "flc_handle": "0x80001728", "index": -1701})",
         {}},
        {"Commit",
         Tell<Adaptor>(&Adaptor::Commit, kCollection),
         R"({"type": 15, "method": 18, "flc_handle": "0x80001728"})",
         {}},
        {"ActivateFavouriteList",
         Tell<Adaptor>(&Adaptor::ActivateFavouriteList, kCollection, std::string("text 19 of favId")),
         R"({"type": 15, "method": 19, "flc_handle": "0x80001728", "favId": "text 19 of favId"})",
         {}},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"GetFavouriteList",
     [](const std::string& text) {
         void* handle = nullptr;
         Adaptor::GetInstance()->GetFavouriteList(kCollection, text, handle);
     },
     R"({"type": 15, "method": 15, "flc_handle": "0x80001728", "favId": ""})"},
    {"CreateFavouriteList",
     [](const std::string& text) {
         void* handle = nullptr;
         Adaptor::GetInstance()->CreateFavouriteList(kCollection, text, handle);
     },
     R"({"type": 15, "method": 16, "flc_handle": "0x80001728", "name": ""})"},
    {"ActivateFavouriteList",
     [](const std::string& text) { Adaptor::GetInstance()->ActivateFavouriteList(kCollection, text); },
     R"({"type": 15, "method": 19, "flc_handle": "0x80001728", "favId": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"favourite_list_collection", "[ipc_videobroadcast]",
                                        "tolm_favourite_list_collection_adaptor_ipc.cpp", &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(FavouriteListCollectionRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(FavouriteListCollectionRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(FavouriteListCollectionRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(FavouriteListCollectionRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(FavouriteListCollectionProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(FavouriteListCollectionProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 34, "service_plugin_to_hbbtv_vb_fav_list_collect", 6, "platform");
    ExpectNoEventsInTheProtocol();
}

TEST(FavouriteListCollectionProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(15, Codes(12, 19));
}

TEST(FavouriteListCollectionProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample("CreateFavouriteList",
                              Ask<Adaptor, void*>(&Adaptor::CreateFavouriteList, Handle(0x7c40), std::string("Sport")),
                              R"({"type": 15, "method": 16, "flc_handle": "0x7c40", "name": "Sport"})", {"0x6b30"});
}

}  // namespace hbbtv::test
