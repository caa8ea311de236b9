// Numbers of the local system that a client receives as they are, or as a bool.
#include <gtest/gtest.h>

#include "method_rows.h"

namespace hbbtv::test {

TEST(LocalSystem, GivesWhetherRecordingIsEnabledAsABool) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), "");
    for (const char* enabled : {"1", "2", "-1", "256", "2147483647", "-2147483648", "true"}) {
        SCOPED_TRACE(enabled);
        platform.SetReply(std::string(R"({"ret": 0, "pvrEnabled": )") + enabled + "}");
        EXPECT_EQ(Answer("GetPvrEnabled"), "[0,true]");
    }
    for (const char* reply : {R"({"ret": 0, "pvrEnabled": 0})", R"({"ret": 0})", R"({"ret": 0, "pvrEnabled": "1"})"}) {
        SCOPED_TRACE(reply);
        platform.SetReply(reply);
        EXPECT_EQ(Answer("GetPvrEnabled"), "[0,false]");
    }
}

TEST(LocalSystem, HandsTheNumberOfCiPlusOn) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), "");
    for (const char* enabled : {"0", "1", "2", "-1", "2147483647", "-2147483648"}) {
        platform.SetReply(std::string(R"({"ret": 0, "ciplusEnabled": )") + enabled + "}");
        EXPECT_EQ(Answer("GetCiplusEnabled"), std::string("[0,") + enabled + "]");
    }
}

}  // namespace hbbtv::test
