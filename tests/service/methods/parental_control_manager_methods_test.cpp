// A handle that the platform leaves out.
#include <gtest/gtest.h>

#include "method_rows.h"

namespace hbbtv::test {

TEST(ParentalControlManager, GivesNoThresholdWhenTheReplyLacksIt) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 0})");
    EXPECT_EQ(Answer("GetThreshold", Parsed("[1]")), "[-1,0]");
}

}  // namespace hbbtv::test
