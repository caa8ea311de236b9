// Unknown values of a channel, and strings of any size.
#include <gtest/gtest.h>

#include "method_rows.h"

namespace hbbtv::test {

TEST(Channel, PassesUnknownKindsOn) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(), R"({"ret": 0, "channelType": -77, "idType": 2147483647})");
    EXPECT_EQ(Answer("GetChannelType", Parsed("[1]")), "[0,-77]");
    EXPECT_EQ(Answer("GetIdType", Parsed("[1]")), "[0,2147483647]");
}

TEST(Channel, CarriesTextsWhole) {
    const std::string text = std::string(64 * 1024, 'x') + "\xf0\x9f\x93\xba\"\\\n" + std::string(1, '\0') + "end";
    ScratchDirectory directory;
    Json::Value reply;
    reply["ret"] = 0;
    reply["name"] = text;
    FakePlatform platform(UnderTest().Socket(), reply.toStyledString());
    EXPECT_EQ(Parsed(Answer("GetName", Parsed("[1]")))[1].asString(), text);
    Json::Value arguments = Parsed("[1]");
    arguments.append(text);
    EXPECT_EQ(Answer("SetName", arguments), "[0]");
    EXPECT_EQ(Parsed(platform.Frames().at(1).payload)["name"].asString(), text);
}

}  // namespace hbbtv::test
