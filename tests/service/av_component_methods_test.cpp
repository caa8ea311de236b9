// Every method of IAVComponent: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "AVComponent.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using android::hardware::hidl_string;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IAVComponent;
using vantorel::hardware::hbbtv::V1_0::TolmHbbtvAVComponentType;

// A handle as a client may give it: the platform gets the low half.
constexpr int64_t kObject = 0x7777777780001000;

struct Rows : ServiceOf<&HIDL_FETCH_IAVComponent> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"GetComponentTag", Result<int32_t>([](auto& s, auto cb) { return s.GetComponentTag(kObject, cb); }), 1,
             R"({"handle": "0x80001000"})", R"({"tag": -11})", "0 -11", "-1 0"},
            {"GetPid", Result<int32_t>([](auto& s, auto cb) { return s.GetPid(kObject, cb); }), 2,
             R"({"handle": "0x80001000"})", R"({"pid": -12})", "0 -12", "-1 0"},
            {"GetType", Result<TolmHbbtvAVComponentType>([](auto& s, auto cb) { return s.GetType(kObject, cb); }), 3,
             R"({"handle": "0x80001000"})", R"({"type": 93})", "0 93", "-1 0"},
            {"GetEncoding", Result<hidl_string>([](auto& s, auto cb) { return s.GetEncoding(kObject, cb); }), 4,
             R"({"handle": "0x80001000"})", R"({"encoding": "encoding of 4"})", "0 encoding of 4", "-1 "},
            {"GetEncrypted", Result<bool>([](auto& s, auto cb) { return s.GetEncrypted(kObject, cb); }), 5,
             R"({"handle": "0x80001000"})", R"({"encrypted": true})", "0 1", "-1 0"},
            {"GetAspectRatio", Result<double>([](auto& s, auto cb) { return s.GetAspectRatio(kObject, cb); }), 6,
             R"({"handle": "0x80001000"})", R"({"aspect_ratio": 1.78})", "0 1.780000", "-1 0.000000"},
            {"GetLanguage", Result<hidl_string>([](auto& s, auto cb) { return s.GetLanguage(kObject, cb); }), 7,
             R"({"handle": "0x80001000"})", R"({"language": "language of 7"})", "0 language of 7", "-1 "},
            {"GetAudioDescription", Result<bool>([](auto& s, auto cb) { return s.GetAudioDescription(kObject, cb); }),
             8, R"({"handle": "0x80001000"})", R"({"desc": true})", "0 1", "-1 0"},
            {"GetAudioChannelNum", Result<uint32_t>([](auto& s, auto cb) { return s.GetAudioChannelNum(kObject, cb); }),
             9, R"({"handle": "0x80001000"})", R"({"num": -1})", "0 4294967295", "-1 0"},
            {"GetHearingImpaired", Result<bool>([](auto& s, auto cb) { return s.GetHearingImpaired(kObject, cb); }), 10,
             R"({"handle": "0x80001000"})", R"({"impaired": true})", "0 1", "-1 0"},
            {"GetLabel", Result<hidl_string>([](auto& s, auto cb) { return s.GetLabel(kObject, cb); }), 11,
             R"({"handle": "0x80001000"})", R"({"label": "label of 11"})", "0 label of 11", "-1 "},
        };
        return *rows;
    }

    static const std::vector<MethodRow>& OneWays() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"Release", Status([](auto& s) { return s.Release(kObject); }), 0, R"({"handle": "0x80001000"})", "{}", "0",
             "-1"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_av_com", 14, 11};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(AVComponent, Method, testing::ValuesIn(Rows::Requests()), NameOf);
INSTANTIATE_TEST_SUITE_P(AVComponent, OneWayMethod, testing::ValuesIn(Rows::OneWays()), NameOf);

TEST(AVComponentMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size() + Rows::OneWays().size()));
}

}  // namespace hbbtv::test
