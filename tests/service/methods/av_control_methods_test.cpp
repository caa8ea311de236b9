// Lists of components of any length and with any strings.
#include <gtest/gtest.h>

#include "method_rows.h"

namespace hbbtv::test {

TEST(AVControl, SendsNoComponents) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 0})");
    EXPECT_EQ(Answer("ComponentUpdate", Parsed("[7, 0, [], 0]")), "[0]");
    ASSERT_TRUE(platform.WaitForFrames(1));
    EXPECT_EQ(platform.Frames()[0].payload,
              "{\n\t\"component_count\" : 0,\n\t\"component_type\" : 0,\n\t\"components\" : null,\n"
              "\t\"current_component_index\" : 0,\n\t\"method\" : 0,\n\t\"type\" : 2\n}\n");
}

TEST(AVControl, SendsManyComponents) {
    constexpr unsigned kMany = 10000;
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 0})");
    Json::Value arguments = Parsed("[7, 1, [], 0]");
    for (unsigned i = 0; i < kMany; ++i) arguments[2][i]["audioChannels"] = i;
    EXPECT_EQ(Answer("ComponentUpdate", arguments), "[0]");
    ASSERT_TRUE(platform.WaitForFrames(1));
    const Json::Value request = Parsed(platform.Frames()[0].payload);
    ASSERT_EQ(request["components"].size(), kMany);
    for (unsigned i = 0; i < kMany; ++i) EXPECT_EQ(request["components"][i]["audio_channelNum"].asUInt(), i);
}

TEST(AVControl, SendsAStringUpToItsFirstZeroByte) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 0})");
    EXPECT_EQ(Answer("ComponentUpdate", Parsed(R"([7, 1, [{"encoding": "AC3\u0000x"}], 0])")), "[0]");
    ASSERT_TRUE(platform.WaitForFrames(1));
    EXPECT_EQ(Parsed(platform.Frames()[0].payload)["components"][0]["encoding"].asString(), "AC3");
}

}  // namespace hbbtv::test
