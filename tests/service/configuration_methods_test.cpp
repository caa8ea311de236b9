// Every method of IConfiguration: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "Configuration.h"
#include "method_rows.h"
#include "recording_configuration_callback.h"

namespace hbbtv::test {

namespace {

using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IConfiguration;

struct Rows : ServiceOf<&HIDL_FETCH_IConfiguration> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"GetPreferredAudioLanguage",
             Result<hidl_string>([](auto& s, auto cb) { return s.GetPreferredAudioLanguage(cb); }), 0, "{}",
             R"({"pref_audio_language": "pref_audio_language of 0"})", "0 pref_audio_language of 0", "-1 "},
            {"SetPreferredAudioLanguage",
             Status([](auto& s) { return s.SetPreferredAudioLanguage("pref_audio_language 1"); }), 1,
             R"({"pref_audio_language": "pref_audio_language 1"})", "{}", "0", "-1"},
            {"GetPreferredSubtitleLanguage",
             Result<hidl_string>([](auto& s, auto cb) { return s.GetPreferredSubtitleLanguage(cb); }), 2, "{}",
             R"({"pref_sub_language": "pref_sub_language of 2"})", "0 pref_sub_language of 2", "-1 "},
            {"SetPreferredSubtitleLanguage",
             Status([](auto& s) { return s.SetPreferredSubtitleLanguage("pref_sub_language 3"); }), 3,
             R"({"pref_sub_language": "pref_sub_language 3"})", "{}", "0", "-1"},
            {"GetPreferredUILanguage",
             Result<hidl_string>([](auto& s, auto cb) { return s.GetPreferredUILanguage(cb); }), 4, "{}",
             R"({"pref_ui_language": "pref_ui_language of 4"})", "0 pref_ui_language of 4", "-1 "},
            {"SetPreferredUILanguage", Status([](auto& s) { return s.SetPreferredUILanguage("pref_ui_language 5"); }),
             5, R"({"pref_ui_language": "pref_ui_language 5"})", "{}", "0", "-1"},
            {"GetCountryId", Result<hidl_string>([](auto& s, auto cb) { return s.GetCountryId(cb); }), 6, "{}",
             R"({"id": "id of 6"})", "0 id of 6", "-1 "},
            {"SetCountryId", Status([](auto& s) { return s.SetCountryId("id 7"); }), 7, R"({"id": "id 7"})", "{}", "0",
             "-1"},
            {"GetRegionId", Result<uint32_t>([](auto& s, auto cb) { return s.GetRegionId(cb); }), 8, "{}",
             R"({"reg_id": 4000000008})", "0 4000000008", "-1 0"},
            {"SetRegionId", Status([](auto& s) { return s.SetRegionId(4000000090u); }), 9, R"({"reg_id": 4000000090})",
             "{}", "0", "-1"},
            {"GetAudioDescriptionEnable",
             Result<bool>([](auto& s, auto cb) { return s.GetAudioDescriptionEnable(cb); }), 24, "{}",
             R"({"enable": true})", "0 1", "-1 0"},
            {"GetAudioHearingImpaired", Result<bool>([](auto& s, auto cb) { return s.GetAudioHearingImpaired(cb); }),
             25, "{}", R"({"enable": true})", "0 1", "-1 0"},
            {"GetDeviceIdContent",
             Result<hidl_string, hidl_string, hidl_string>([](auto& s, auto cb) { return s.GetDeviceIdContent(cb); }),
             26, "{}",
             R"({"serial": "serial of 26", "product": "product of 26", "request_time": "request_time of 26"})",
             "0 serial of 26 product of 26 request_time of 26", "-1   "},
            {"GetDeviceIdEnable", Result<bool>([](auto& s, auto cb) { return s.GetDeviceIdEnable(cb); }), 27, "{}",
             R"({"enable": true})", "0 1", "-1 0"},
            {"GetSubtitleEnable", Result<bool>([](auto& s, auto cb) { return s.GetSubtitleEnable(cb); }), 28, "{}",
             R"({"enable": true})", "0 1", "-1 0"},
            {"GetDttNetworkIds", Result<hidl_vec<int32_t>>([](auto& s, auto cb) { return s.GetDttNetworkIds(cb); }), 32,
             "{}", R"({"num": 3, "k0": 12289, "k1": -32, "k2": 0})", "0 [12289 -32 0]", "-1 []"},
            {"GetRatingAge", Result<int32_t>([](auto& s, auto cb) { return s.GetRatingAge(cb); }), 35, "{}",
             R"({"age": -45})", "0 -45", "-1 0"},
            {"GetDNTPolicy", Result<int32_t>([](auto& s, auto cb) { return s.GetDNTPolicy(cb); }), 36, "{}",
             R"({"dnt": -46})", "0 -46", "-1 0"},
            {"RegisterCallback", Status([](auto& s) { return s.RegisterCallback(new RecordingConfigurationCallback); }),
             33, "{}", "{}", "0", "-1"},
            {"UnregisterCallback",
             Status([](auto& s) { return s.UnregisterCallback(new RecordingConfigurationCallback); }), 34, "{}", "{}",
             "0", "-1"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_conf", 12, 9};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(Configuration, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(ConfigurationMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()));
}

}  // namespace hbbtv::test
