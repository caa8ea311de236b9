// Every method of ISearchManager: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "SearchManager.h"
#include "method_rows.h"
#include "recording_search_manager_callback.h"

namespace hbbtv::test {

namespace {

using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_ISearchManager;
using vantorel::hardware::hbbtv::V1_0::TolmQueryComparisonType;

// A handle as a client may give it: the platform gets the low half.
constexpr int64_t kObject = 0x7777777780001000;

struct Rows : ServiceOf<&HIDL_FETCH_ISearchManager> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"SearchManager_Create", Result<int64_t>([](auto& s, auto cb) { return s.SearchManager_Create(cb); }), 1,
             "{}", R"({"out_handle": "0xf0000001"})", "0 0xf0000001", "-1 0x0"},
            {"SearchManager_Destroy", Status([](auto& s) { return s.SearchManager_Destroy(kObject); }), 3,
             R"({"in_handle": "0x80001000"})", "{}", "0", "-1"},
            {"SearchManager_RegisterCallback", Status([](auto& s) {
                 return s.SearchManager_RegisterCallback(kObject, new RecordingSearchManagerCallback, 0x5ffffffff);
             }),
             4, R"({"in_handle": "0x80001000", "context": "0xffffffff"})", "{}", "0", "-1"},
            {"SearchManager_CreateSearch",
             Result<int64_t>([](auto& s, auto cb) { return s.SearchManager_CreateSearch(kObject, 4000000051u, cb); }),
             5, R"({"in_handle": "0x80001000", "target": 4000000051})", R"({"out_handle": "0xf0000005"})",
             "0 0xf0000005", "-1 0x0"},
            {"SearchManager_DestroySearch", Status([](auto& s) { return s.SearchManager_DestroySearch(kObject); }), 7,
             R"({"in_handle": "0x80001000"})", "{}", "0", "-1"},
            {"MetaSearch_CreateQuery", Result<int64_t>([](auto& s, auto cb) {
                 return s.MetaSearch_CreateQuery(kObject, "field 8", TolmQueryComparisonType::CONTAINS, "value 8", cb);
             }),
             8, R"({"in_handle": "0x80001000", "field": "field 8", "comp": 6, "value": "value 8"})",
             R"({"out_handle": "0xf0000008"})", "0 0xf0000008", "-1 0x0"},
            {"MetaSearch_GetResult",
             Result<int64_t>([](auto& s, auto cb) { return s.MetaSearch_GetResult(kObject, cb); }), 10,
             R"({"in_handle": "0x80001000"})", R"({"out_handle": "0xf0000010"})", "0 0xf0000010", "-1 0x0"},
            {"MetaSearch_GetSearchTarget",
             Result<uint32_t>([](auto& s, auto cb) { return s.MetaSearch_GetSearchTarget(kObject, cb); }), 12,
             R"({"in_handle": "0x80001000"})", R"({"target": 4000000012})", "0 4000000012", "-1 0"},
            {"MetaSearch_SetQuery", Status([](auto& s) { return s.MetaSearch_SetQuery(kObject, 0x1f0000014); }), 14,
             R"({"search_handle": "0x80001000", "query_handle": "0xf0000014"})", "{}", "0", "-1"},
            {"MetaSearch_FindProgrammesFromStream", Status([](auto& s) {
                 return s.MetaSearch_FindProgrammesFromStream(kObject, 0x1f0000015, 1767225600, -154);
             }),
             15,
             R"({"search_handle": "0x80001000", "channel_handle": "0xf0000015", "time": 1767225600.0, "count": -154})",
             "{}", "0", "-1"},
            {"MetaSearch_AddChannelConstraint",
             Status([](auto& s) { return s.MetaSearch_AddChannelConstraint(kObject, 0x1f0000016); }), 16,
             R"({"search_handle": "0x80001000", "channel_handle": "0xf0000016"})", "{}", "0", "-1"},
            {"SearchResults_Release", Status([](auto& s) { return s.SearchResults_Release(kObject); }), 17,
             R"({"in_handle": "0x80001000"})", "{}", "0", "-1"},
            {"SearchResults_GetOffset",
             Result<uint32_t>([](auto& s, auto cb) { return s.SearchResults_GetOffset(kObject, cb); }), 18,
             R"({"in_handle": "0x80001000"})", R"({"offset": 4000000018})", "0 4000000018", "-1 0"},
            {"SearchResults_GetLength",
             Result<uint32_t>([](auto& s, auto cb) { return s.SearchResults_GetLength(kObject, cb); }), 20,
             R"({"in_handle": "0x80001000"})", R"({"length": 60020})", "0 60020", "-1 0"},
            {"SearchResults_GetTotalSize",
             Result<uint32_t>([](auto& s, auto cb) { return s.SearchResults_GetTotalSize(kObject, cb); }), 22,
             R"({"in_handle": "0x80001000"})", R"({"size": 60022})", "0 60022", "-1 0"},
            {"SearchResults_GetProgramme",
             Result<int64_t>([](auto& s, auto cb) { return s.SearchResults_GetProgramme(kObject, 4000000241u, cb); }),
             24, R"({"in_handle": "0x80001000", "index": 4000000241})", R"({"out_handle": "0xf0000024"})",
             "0 0xf0000024", "-1 0x0"},
            {"SearchResults_GetResults",
             Status([](auto& s) { return s.SearchResults_GetResults(kObject, 4000000261u, 4000000262u); }), 26,
             R"({"in_handle": "0x80001000", "offset": 4000000261, "count": 4000000262})", "{}", "0", "-1"},
            {"SearchResults_Abort", Status([](auto& s) { return s.SearchResults_Abort(kObject); }), 27,
             R"({"in_handle": "0x80001000"})", "{}", "0", "-1"},
            {"Query_Release", Status([](auto& s) { return s.Query_Release(kObject); }), 28,
             R"({"in_handle": "0x80001000"})", "{}", "0", "-1"},
            {"Query_And", Result<int64_t>([](auto& s, auto cb) { return s.Query_And(kObject, 0x1f0000029, cb); }), 29,
             R"({"in_handle1": "0x80001000", "in_handle2": "0xf0000029"})", R"({"out_handle": "0xf0000029"})",
             "0 0xf0000029", "-1 0x0"},
            {"Query_Or", Result<int64_t>([](auto& s, auto cb) { return s.Query_Or(kObject, 0x1f0000031, cb); }), 31,
             R"({"in_handle1": "0x80001000", "in_handle2": "0xf0000031"})", R"({"out_handle": "0xf0000031"})",
             "0 0xf0000031", "-1 0x0"},
            {"Query_Not", Result<int64_t>([](auto& s, auto cb) { return s.Query_Not(kObject, cb); }), 33,
             R"({"in_handle": "0x80001000"})", R"({"out_handle": "0xf0000033"})", "0 0xf0000033", "-1 0x0"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_sm", 8, 0};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(SearchManager, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(SearchManagerMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()));
}

TEST(SearchManager, NarrowsTheStartTimeTo32Bits) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_sm", R"({"ret": 0})");
    const std::pair<uint64_t, const char*> times[] = {
        {0, "0.0"},
        {1, "1.0"},
        {0x7fffffff, "2147483647.0"},
        {0x80000000, "2147483648.0"},
        {0xffffffff, "4294967295.0"},
        {0x100000000, "0.0"},
        {0x769563b00, "1767258880.0"},
        {~uint64_t{0}, "4294967295.0"},
    };
    for (const auto& [time, wire] : times) {
        platform.ForgetFrames();
        ASSERT_TRUE(Rows::Make()->MetaSearch_FindProgrammesFromStream(1, 2, time, 3).isOk());
        ASSERT_EQ(1u, platform.Frames().size());
        EXPECT_EQ(std::string("{\n\t\"channel_handle\" : \"0x2\",\n\t\"count\" : 3,\n\t\"method\" : 15,\n"
                              "\t\"search_handle\" : \"0x1\",\n\t\"time\" : ") +
                      wire + ",\n\t\"type\" : 0\n}\n",
                  platform.Frames()[0].payload);
    }
}

TEST(SearchManager, GivesHandlesWithAZeroHighHalf) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_sm", R"({"ret": 0, "out_handle": "0x12345678f0000001"})");
    int64_t query = -1;
    ASSERT_TRUE(Rows::Make()->Query_Not(kObject, [&](int32_t, int64_t handle) { query = handle; }).isOk());
    EXPECT_EQ(0xf0000001, query);
}

}  // namespace hbbtv::test
