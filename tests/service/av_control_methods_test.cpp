// The method of IAVControl that tells the platform something: the request it makes, and what its caller is answered.
// The other two are those of the registration, see av_control_events_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "AVControl.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IAVControl;
using vantorel::hardware::hbbtv::V1_0::TolmAvComponentData;
using vantorel::hardware::hbbtv::V1_0::TolmHbbtvAVComponentType;
using vantorel::hardware::hbbtv::V1_0::TolmHbbtvAVCtrlEvent;

constexpr auto kEvent = static_cast<TolmHbbtvAVCtrlEvent>(7);

const hidl_vec<TolmAvComponentData>& Components() {
    static const auto* const components = new hidl_vec<TolmAvComponentData>{
        {true, -11, TolmHbbtvAVComponentType::AUDIO, "E-AC3", "fra", 4000000001u, true, false},
        {false, 21, TolmHbbtvAVComponentType::SUBTITLE, "DVB-SUBT", "", 0, false, true},
    };
    return *components;
}

struct Rows : ServiceOf<&HIDL_FETCH_IAVControl> {
    static const std::vector<MethodRow>& OneWays() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"ComponentUpdate", Status([](auto& s) {
                 return s.ComponentUpdate(kEvent, TolmHbbtvAVComponentType::SUBTITLE, Components(), -3);
             }),
             0,
             R"({"component_type": 2, "component_count": 2, "current_component_index": -3, "components": [
                 {"actived": true, "comp_type": 1, "encoding": "E-AC3", "language": "fra",
                  "audio_channelNum": 4000000001, "impaired": true, "desc": false, "compTag": -11},
                 {"actived": false, "comp_type": 2, "encoding": "DVB-SUBT", "language": "",
                  "audio_channelNum": 0, "impaired": false, "desc": true, "compTag": 21}]})",
             "{}", "0", "-1"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_av_ctrl", 19, 2};
    return tested;
}

// All methods that ask the platform do not wait for it.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Method);
INSTANTIATE_TEST_SUITE_P(AVControl, OneWayMethod, testing::ValuesIn(Rows::OneWays()), NameOf);

TEST(AVControlMethodTable, HasARowForEveryMethodButThoseOfTheRegistration) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::OneWays().size()) + 2);
}

TEST(AVControl, TellsOfNoComponents) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_av_ctrl", R"({"ret": 0})");
    const auto status = Rows::Make()->ComponentUpdate(kEvent, TolmHbbtvAVComponentType::VIDEO, {}, 0);
    EXPECT_EQ(0, static_cast<int32_t>(status));
    ASSERT_TRUE(platform.WaitForFrames(1));
    EXPECT_EQ(
        "{\n\t\"component_count\" : 0,\n\t\"component_type\" : 0,\n\t\"components\" : null,\n"
        "\t\"current_component_index\" : 0,\n\t\"method\" : 0,\n\t\"type\" : 2\n}\n",
        platform.Frames()[0].payload);
}

TEST(AVControl, TellsOfManyComponents) {
    constexpr unsigned kMany = 10000;
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_av_ctrl", R"({"ret": 0})");
    hidl_vec<TolmAvComponentData> components;
    components.resize(kMany);
    for (unsigned i = 0; i < kMany; ++i) components[i].audioChannels = i;
    const auto status = Rows::Make()->ComponentUpdate(kEvent, TolmHbbtvAVComponentType::AUDIO, components, 0);
    EXPECT_EQ(0, static_cast<int32_t>(status));
    ASSERT_TRUE(platform.WaitForFrames(1));
    const Json::Value request = Parsed(platform.Frames()[0].payload);
    ASSERT_EQ(kMany, request["components"].size());
    for (unsigned i = 0; i < kMany; ++i) EXPECT_EQ(i, request["components"][i]["audio_channelNum"].asUInt());
}

TEST(AVControl, TellsATextUpToItsFirstZeroByte) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_av_ctrl", R"({"ret": 0})");
    TolmAvComponentData component{};
    component.encoding = std::string("AC3\0x", 5);
    const auto status = Rows::Make()->ComponentUpdate(kEvent, TolmHbbtvAVComponentType::AUDIO, {component}, 0);
    EXPECT_EQ(0, static_cast<int32_t>(status));
    ASSERT_TRUE(platform.WaitForFrames(1));
    EXPECT_EQ("AC3", Parsed(platform.Frames()[0].payload)["components"][0]["encoding"].asString());
}

}  // namespace hbbtv::test
