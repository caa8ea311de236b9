// What is worth a look at single operations of the search adaptor, beside the rows of its table.

#include <gtest/gtest.h>

#include <set>

#include "ipc/src/plugin/tolm_search_manager_adaptor_ipc.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmSearchManagerAdaptor;

const void* Pointer(uintptr_t bits) {
    return reinterpret_cast<const void*>(bits);
}

class SearchManagerRequests : public ::testing::Test {
  protected:
    ~SearchManagerRequests() override { Adaptor::DeleteInstance(); }

    ScratchDirectory mDirectory;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0}"};
};

}  // namespace

TEST_F(SearchManagerRequests, TheStartTimeStandsAsARealNumber) {
    const std::pair<uint32_t, const char*> times[] = {
        {0, "0.0"}, {1, "1.0"}, {1767225600, "1767225600.0"}, {2147483648u, "2147483648.0"}, {~0u, "4294967295.0"},
    };
    for (const auto& [time, wire] : times) {
        mPlatform.ForgetFrames();
        EXPECT_EQ(Adaptor::GetInstance()->MetaSearch_FindProgrammesFromStream(Pointer(1), Pointer(2), time, -1), 0);
        ASSERT_EQ(mPlatform.Frames().size(), 1u);
        EXPECT_EQ(mPlatform.Frames()[0].payload,
                  std::string("{\n\t\"channel_handle\" : \"0x2\",\n\t\"count\" : -1,\n\t\"method\" : 15,\n"
                              "\t\"search_handle\" : \"0x1\",\n\t\"time\" : ") +
                      wire + ",\n\t\"type\" : 0\n}\n");
    }
}

TEST_F(SearchManagerRequests, TheNumbersOfAResultSetStandUnderNamesOfTheirOwn) {
    mPlatform.SetReply("{\"ret\": 0, \"offset\": 100000, \"length\": 20, \"size\": 3000}");
    unsigned offset = 0;
    unsigned length = 0;
    unsigned size = 0;
    EXPECT_EQ(Adaptor::GetInstance()->SearchResults_GetOffset(Pointer(1), offset), 0);
    EXPECT_EQ(Adaptor::GetInstance()->SearchResults_GetLength(Pointer(1), length), 0);
    EXPECT_EQ(Adaptor::GetInstance()->SearchResults_GetTotalSize(Pointer(1), size), 0);
    EXPECT_EQ(offset, 100000u);
    EXPECT_EQ(length, 20u);
    EXPECT_EQ(size, 3000u);
}

TEST_F(SearchManagerRequests, ResultsAreWaitedForLikeEveryReply) {
    mPlatform.SetReply("{\"ret\": 4}");
    EXPECT_EQ(Adaptor::GetInstance()->SearchResults_GetResults(Pointer(1), 0, 20), 4);
    mPlatform.SetReply("nonsense");
    EXPECT_EQ(Adaptor::GetInstance()->SearchResults_GetResults(Pointer(1), 0, 20), -1);
    ASSERT_EQ(mPlatform.Frames().size(), 2u);
    EXPECT_EQ(mPlatform.Frames()[0].type, kRequest);
}

TEST_F(SearchManagerRequests, OfTwoOperandsKeepTheirOrder) {
    void* query = nullptr;
    EXPECT_EQ(Adaptor::GetInstance()->Query_And(Pointer(0xa), Pointer(0xb), query), -1);
    EXPECT_EQ(Adaptor::GetInstance()->Query_Or(Pointer(0xb), nullptr, query), -1);
    ASSERT_EQ(mPlatform.Frames().size(), 2u);
    EXPECT_EQ(mPlatform.Frames()[0].payload,
              "{\n\t\"in_handle1\" : \"0xa\",\n\t\"in_handle2\" : \"0xb\",\n\t\"method\" : 29,\n\t\"type\" : 0\n}\n");
    EXPECT_EQ(mPlatform.Frames()[1].payload,
              "{\n\t\"in_handle1\" : \"0xb\",\n\t\"in_handle2\" : \"\",\n\t\"method\" : 31,\n\t\"type\" : 0\n}\n");
}

TEST(SearchManagerProtocol, KeepsTheCodeBehindEachOperationWithAResultFree) {
    const Json::Value& protocol = UnderTest().Wire().protocol;
    std::set<int> used;
    for (const Json::Value& operation : protocol["operations"]) used.insert(operation["code"].asInt());
    std::set<int> unused;
    for (const Json::Value& codes : protocol["unused_codes"]) {
        for (int code = codes["from"].asInt(); code <= codes["to"].asInt(); ++code) unused.insert(code);
    }
    for (const int code : {2, 6, 9, 11, 13, 19, 21, 23, 25, 30, 32}) {
        EXPECT_EQ(used.count(code), 0u) << code;
        EXPECT_EQ(unused.count(code), 1u) << code;
    }
}

}  // namespace hbbtv::test
