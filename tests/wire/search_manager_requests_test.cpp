// Every operation of the search adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_search_manager_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmSearchManagerAdaptor;

void Receive(const TolmSearchManagerEvent&, const TolmSearchManagerEventInfo&, const void*) {}

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"SearchManager_Create",
         Ask<Adaptor, void*>(&Adaptor::SearchManager_Create),
         R"({"type": 0, "method": 1})",
         {{"out_handle", "pointer", R"("0xfeed0001")", "0xfeed0001"}}},
        {"SearchManager_Destroy",
         Tell<Adaptor>(&Adaptor::SearchManager_Destroy, Handle(0xcafe0030)),
         R"({"type": 0, "method": 3, "in_handle": "0xcafe0030"})",
         {}},
        {"SearchManager_RegisterCallback",
         Tell<Adaptor>(&Adaptor::SearchManager_RegisterCallback, Handle(0xcafe0040), &Receive, Handle(0xcafe0041)),
         R"({"type": 0, "method": 4, "in_handle": "0xcafe0040", "context": "0xcafe0041"})",
         {}},
        {"SearchManager_CreateSearch",
         Ask<Adaptor, void*>(&Adaptor::SearchManager_CreateSearch, Handle(0xcafe0050), 4000000052u),
         R"({"type": 0, "method": 5, "in_handle": "0xcafe0050", "target": 4000000052})",
         {{"out_handle", "pointer", R"("0xfeed0005")", "0xfeed0005"}}},
        {"SearchManager_DestroySearch",
         Tell<Adaptor>(&Adaptor::SearchManager_DestroySearch, Handle(0xcafe0070)),
         R"({"type": 0, "method": 7, "in_handle": "0xcafe0070"})",
         {}},
        {"MetaSearch_CreateQuery",
         Ask<Adaptor, void*>(&Adaptor::MetaSearch_CreateQuery, Handle(0xcafe0080), std::string("text 8 of field"), -83,
                             std::string("text 8 of value")),
         R"({"type": 0, "method": 8, "in_handle": "0xcafe0080", "field": "text 8 of field", )"
         R"("comp": -83, "value": "text 8 of value"})",
         {{"out_handle", "pointer", R"("0xfeed0008")", "0xfeed0008"}}},
        {"MetaSearch_GetResult",
         Ask<Adaptor, void*>(&Adaptor::MetaSearch_GetResult, Handle(0xcafe00a0)),
         R"({"type": 0, "method": 10, "in_handle": "0xcafe00a0"})",
         {{"out_handle", "pointer", R"("0xfeed000a")", "0xfeed000a"}}},
        {"MetaSearch_GetSearchTarget",
         Ask<Adaptor, unsigned>(&Adaptor::MetaSearch_GetSearchTarget, Handle(0xcafe00c0)),
         R"({"type": 0, "method": 12, "in_handle": "0xcafe00c0"})",
         {{"target", "uint", "4100000012", "4100000012"}}},
        {"MetaSearch_SetQuery",
         Tell<Adaptor>(&Adaptor::MetaSearch_SetQuery, Handle(0xcafe00e0), Handle(0xcafe00e1)),
         R"({"type": 0, "method": 14, "search_handle": "0xcafe00e0", "query_handle": "0xcafe00e1"})",
         {}},
        {"MetaSearch_FindProgrammesFromStream",
         Tell<Adaptor>(&Adaptor::MetaSearch_FindProgrammesFromStream, Handle(0xcafe00f0), Handle(0xcafe00f1),
                       4000000153u, -154),
         R"({"type": 0, "method": 15, "search_handle": "0xcafe00f0", "channel_handle": "0xcafe00f1", )"
         R"("time": 4000000153.0, "count": -154})",
         {}},
        {"MetaSearch_AddChannelConstraint",
         Tell<Adaptor>(&Adaptor::MetaSearch_AddChannelConstraint, Handle(0xcafe0100), Handle(0xcafe0101)),
         R"({"type": 0, "method": 16, "search_handle": "0xcafe0100", "channel_handle": "0xcafe0101"})",
         {}},
        {"SearchResults_Release",
         Tell<Adaptor>(&Adaptor::SearchResults_Release, Handle(0xcafe0110)),
         R"({"type": 0, "method": 17, "in_handle": "0xcafe0110"})",
         {}},
        {"SearchResults_GetOffset",
         Ask<Adaptor, unsigned>(&Adaptor::SearchResults_GetOffset, Handle(0xcafe0120)),
         R"({"type": 0, "method": 18, "in_handle": "0xcafe0120"})",
         {{"offset", "uint", "4100000018", "4100000018"}}},
        {"SearchResults_GetLength",
         Ask<Adaptor, unsigned>(&Adaptor::SearchResults_GetLength, Handle(0xcafe0140)),
         R"({"type": 0, "method": 20, "in_handle": "0xcafe0140"})",
         {{"length", "few", "420", "420"}}},
        {"SearchResults_GetTotalSize",
         Ask<Adaptor, unsigned>(&Adaptor::SearchResults_GetTotalSize, Handle(0xcafe0160)),
         R"({"type": 0, "method": 22, "in_handle": "0xcafe0160"})",
         {{"size", "few", "422", "422"}}},
        {"SearchResults_GetProgramme",
         Ask<Adaptor, void*>(&Adaptor::SearchResults_GetProgramme, Handle(0xcafe0180), 4000000242u),
         R"({"type": 0, "method": 24, "in_handle": "0xcafe0180", "index": 4000000242})",
         {{"out_handle", "pointer", R"("0xfeed0018")", "0xfeed0018"}}},
        {"SearchResults_GetResults",
         Tell<Adaptor>(&Adaptor::SearchResults_GetResults, Handle(0xcafe01a0), 4000000262u, 4000000263u),
         R"({"type": 0, "method": 26, "in_handle": "0xcafe01a0", "offset": 4000000262, )"
         R"("count": 4000000263})",
         {}},
        {"SearchResults_Abort",
         Tell<Adaptor>(&Adaptor::SearchResults_Abort, Handle(0xcafe01b0)),
         R"({"type": 0, "method": 27, "in_handle": "0xcafe01b0"})",
         {}},
        {"Query_Release",
         Tell<Adaptor>(&Adaptor::Query_Release, Handle(0xcafe01c0)),
         R"({"type": 0, "method": 28, "in_handle": "0xcafe01c0"})",
         {}},
        {"Query_And",
         Ask<Adaptor, void*>(&Adaptor::Query_And, Handle(0xcafe01d0), Handle(0xcafe01d1)),
         R"({"type": 0, "method": 29, "in_handle1": "0xcafe01d0", "in_handle2": "0xcafe01d1"})",
         {{"out_handle", "pointer", R"("0xfeed001d")", "0xfeed001d"}}},
        {"Query_Or",
         Ask<Adaptor, void*>(&Adaptor::Query_Or, Handle(0xcafe01f0), Handle(0xcafe01f1)),
         R"({"type": 0, "method": 31, "in_handle1": "0xcafe01f0", "in_handle2": "0xcafe01f1"})",
         {{"out_handle", "pointer", R"("0xfeed001f")", "0xfeed001f"}}},
        {"Query_Not",
         Ask<Adaptor, void*>(&Adaptor::Query_Not, Handle(0xcafe0210)),
         R"({"type": 0, "method": 33, "in_handle": "0xcafe0210"})",
         {{"out_handle", "pointer", R"("0xfeed0021")", "0xfeed0021"}}},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"MetaSearch_CreateQuery",
     [](const std::string& text) {
         void* handle = nullptr;
         Adaptor::GetInstance()->MetaSearch_CreateQuery(Handle(1), text, 3, text, handle);
     },
     R"({"type": 0, "method": 8, "in_handle": "0x1", "field": "", "comp": 3, "value": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"search_manager", "[ipc_search_manager]", "tolm_search_manager_adaptor_ipc.cpp",
                                        &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(SearchManagerRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(SearchManagerRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(SearchManagerRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(SearchManagerRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(SearchManagerProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(SearchManagerProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 27, "service_plugin_to_hbbtv_sm", 8, "platform");
    ExpectTheProtocolsEndpoint("events", 49, "service_hbbtv_to_plugin_sm", 8, "library");
}

TEST(SearchManagerProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(0, {1, 3, 4, 5, 7, 8, 10, 12, 14, 15, 16, 17, 18, 20, 22, 24, 26, 27, 28, 29, 31, 33});
}

TEST(SearchManagerProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample(
        "MetaSearch_FindProgrammesFromStream",
        Tell<Adaptor>(&Adaptor::MetaSearch_FindProgrammesFromStream, Handle(0x9d20), Handle(0x4f10), 1767225600u, 20),
        R"({"type": 0, "method": 15, "search_handle": "0x9d20", "channel_handle": "0x4f10", "time": 1767225600.0, )"
        R"("count": 20})",
        {});
}

}  // namespace hbbtv::test
