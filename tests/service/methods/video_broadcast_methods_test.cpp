// A method that sends nothing, and a handle whose low half is null.
#include <gtest/gtest.h>

#include "method_rows.h"

namespace hbbtv::test {

TEST(VideoBroadcast, SetChannelExtGivesZeroWithoutAskingThePlatform) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 5})");
    EXPECT_EQ(Answer("SetChannel_Ext", Parsed(R"([1, -1, true, "url", 1])")), "[0]");
    EXPECT_TRUE(platform.Frames().empty());
}

TEST(VideoBroadcast, ANullHandleGoesOutAsTheEmptyText) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 0})");
    Answer("SetChannel", Parsed(R"([1, 4294967296, false, ""])"));
    EXPECT_EQ(Parsed(platform.Frames().at(0).payload)["channel"], "");
}

}  // namespace hbbtv::test
