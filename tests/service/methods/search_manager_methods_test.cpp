// The start time of a search: 64 bits of a client, 32 of the platform.
#include <gtest/gtest.h>

#include "method_rows.h"

namespace hbbtv::test {

TEST(SearchManager, NarrowsTheStartTimeTo32Bits) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 0})");
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
        Json::Value arguments = Parsed("[1, 2, 0, 3]");
        arguments[2] = Json::UInt64{time};
        EXPECT_EQ(Answer("MetaSearch_FindProgrammesFromStream", arguments), "[0]");
        ASSERT_EQ(platform.Frames().size(), 1u);
        EXPECT_EQ(platform.Frames()[0].payload,
                  std::string("{\n\t\"channel_handle\" : \"0x2\",\n\t\"count\" : 3,\n\t\"method\" : 15,\n"
                              "\t\"search_handle\" : \"0x1\",\n\t\"time\" : ") +
                      wire + ",\n\t\"type\" : 0\n}\n");
    }
}

}  // namespace hbbtv::test
