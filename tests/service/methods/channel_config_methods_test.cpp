// Lists of channels of any length.
#include <gtest/gtest.h>

#include <cstdio>

#include "method_rows.h"

namespace hbbtv::test {

TEST(ChannelConfig, MakesListsOfAnyLength) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 0, "list": "0x5a20"})");
    for (const int length : {0, 1, 11, 10000}) {
        SCOPED_TRACE(length);
        Json::Value arguments = Parsed("[[]]");
        for (int i = 0; i < length; ++i) arguments[0].append(Json::Int64{0x100000000} * i + 1 + i);
        platform.ForgetFrames();
        EXPECT_EQ(Answer("CreateChannelList", arguments), "[0,23072]");
        ASSERT_EQ(platform.Frames().size(), 1u);
        const Json::Value request = Parsed(platform.Frames()[0].payload);
        EXPECT_EQ(request["size"].asInt(), length);
        ASSERT_EQ(request.size(), static_cast<size_t>(length) + 3);
        for (int i = 0; i < length; ++i) {
            char handle[32];
            snprintf(handle, sizeof(handle), "0x%x", 1 + i);
            EXPECT_EQ(request["channel" + std::to_string(i)].asString(), handle);
        }
    }
}

}  // namespace hbbtv::test
