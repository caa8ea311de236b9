// Every method of IParentalControlManager: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "ParentalControlManager.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using android::hardware::hidl_string;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IParentalControlManager;

// A handle as a client may give it: the platform gets the low half.
constexpr int64_t kObject = 0x7777777780001000;

struct Rows : ServiceOf<&HIDL_FETCH_IParentalControlManager> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"Create", Result<int64_t>([](auto& s, auto cb) { return s.Create(cb); }), 0, "{}",
             R"({"out_handle": "0xf0000000"})", "0 0xf0000000", "-1 0x0"},
            {"Destroy", Status([](auto& s) { return s.Destroy(kObject); }), 2, R"({"in_handle": "0x80001000"})", "{}",
             "0", "-1"},
            {"GetParentalRatingSchemeNum",
             Result<uint32_t>([](auto& s, auto cb) { return s.GetParentalRatingSchemeNum(kObject, cb); }), 21,
             R"({"in_handle": "0x80001000"})", R"({"num": 2100000000})", "0 2100000000", "-1 0"},
            {"GetParentalRatingSchemeByIndex", Result<int64_t>([](auto& s, auto cb) {
                 return s.GetParentalRatingSchemeByIndex(kObject, 4000002301, cb);
             }),
             23, R"({"in_handle": "0x80001000", "index": 4000002301})", R"({"out_handle": "0xf0000023"})",
             "0 0xf0000023", "-1 0x0"},
            {"AddScheme",
             Result<int64_t>([](auto& s, auto cb) { return s.AddScheme(kObject, "name 25", "values 25", cb); }), 25,
             R"({"in_handle": "0x80001000", "name": "name 25", "values": "values 25"})",
             R"({"out_handle": "0xf0000025"})", "0 0xf0000025", "-1 0x0"},
            {"ReleaseParentalRatingScheme", Status([](auto& s) { return s.ReleaseParentalRatingScheme(kObject); }), 27,
             R"({"in_handle": "0x80001000"})", "{}", "0", "-1"},
            {"GetParentalRatingSchemeName",
             Result<hidl_string>([](auto& s, auto cb) { return s.GetParentalRatingSchemeName(kObject, cb); }), 28,
             R"({"in_handle": "0x80001000"})", R"({"out_name": "out_name of 28"})", "0 out_name of 28", "-1 "},
            {"GetThreshold", Result<int64_t>([](auto& s, auto cb) { return s.GetThreshold(kObject, cb); }), 30,
             R"({"in_handle": "0x80001000"})", R"({"out_handle": "0xf0000030"})", "0 0xf0000030", "-1 0x0"},
            {"GetIconUrl", Result<hidl_string>([](auto& s, auto cb) { return s.GetIconUrl(kObject, 4000003301, cb); }),
             33, R"({"in_handle": "0x80001000", "index": 4000003301})", R"({"out_url": "out_url of 33"})",
             "0 out_url of 33", "-1 "},
            {"ReleaseParentalRating", Status([](auto& s) { return s.ReleaseParentalRating(kObject); }), 35,
             R"({"in_handle": "0x80001000"})", "{}", "0", "-1"},
            {"GetScheme", Result<hidl_string>([](auto& s, auto cb) { return s.GetScheme(kObject, cb); }), 36,
             R"({"in_handle": "0x80001000"})", R"({"out_scheme": "out_scheme of 36"})", "0 out_scheme of 36", "-1 "},
            {"GetParentalRatingName",
             Result<hidl_string>([](auto& s, auto cb) { return s.GetParentalRatingName(kObject, cb); }), 38,
             R"({"in_handle": "0x80001000"})", R"({"out_name": "out_name of 38"})", "0 out_name of 38", "-1 "},
            {"GetValue", Result<int32_t>([](auto& s, auto cb) { return s.GetValue(kObject, cb); }), 40,
             R"({"in_handle": "0x80001000"})", R"({"out_value": -40})", "0 -40", "-1 0"},
            {"GetLabel", Result<uint32_t>([](auto& s, auto cb) { return s.GetLabel(kObject, cb); }), 42,
             R"({"in_handle": "0x80001000"})", R"({"out_label": -1})", "0 4294967295", "-1 0"},
            {"GetRegion", Result<hidl_string>([](auto& s, auto cb) { return s.GetRegion(kObject, cb); }), 44,
             R"({"in_handle": "0x80001000"})", R"({"out_region": "out_region of 44"})", "0 out_region of 44", "-1 "},
            {"GetRatingNum", Result<uint32_t>([](auto& s, auto cb) { return s.GetRatingNum(kObject, cb); }), 46,
             R"({"in_handle": "0x80001000"})", R"({"out_num": -46})", "0 4294967250", "-1 0"},
            {"GetRatingByIndex",
             Result<int64_t>([](auto& s, auto cb) { return s.GetRatingByIndex(kObject, 4000004701, cb); }), 47,
             R"({"in_handle": "0x80001000", "in_index": 4000004701})", R"({"out_handle": "0xf0000047"})",
             "0 0xf0000047", "-1 0x0"},
            {"AddParentalRating", Status([](auto& s) {
                 return s.AddParentalRating(kObject, "scheme 48", "name 48", -48, 4000004802, "region 48");
             }),
             48,
             R"({"in_handle": "0x80001000", "in_scheme": "scheme 48", "in_name": "name 48", "in_value": -48, )"
             R"("in_labels": 4000004802, "in_region": "region 48"})",
             "{}", "0", "-1"},
            {"ReleaseParentalRatingCollection",
             Status([](auto& s) { return s.ReleaseParentalRatingCollection(kObject); }), 49,
             R"({"in_handle": "0x80001000"})", "{}", "0", "-1"},
            {"GetLocalParentalRating",
             Result<hidl_string, int32_t>([](auto& s, auto cb) { return s.GetLocalParentalRating(cb); }), 50, "{}",
             R"({"parentRating": -50, "countryCode": "DEU"})", "0 DEU -50", "-1  0"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_pcm", 16, 13};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(ParentalControlManager, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(ParentalControlManagerMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()));
}

TEST(ParentalControlManager, GivesNoThresholdWhenTheReplyLacksIt) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_pcm", R"({"ret": 0})");
    EXPECT_EQ("-1 0x0", (Rows::Result<int64_t>([](auto& s, auto cb) { return s.GetThreshold(kObject, cb); })()));
}

TEST(ParentalControlManager, GivesHandlesWithAZeroHighHalf) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_pcm", R"({"ret": 0, "out_handle": "0x12345678f0000001"})");
    EXPECT_EQ("0 0xf0000001", (Rows::Result<int64_t>([](auto& s, auto cb) { return s.Create(cb); })()));
}

}  // namespace hbbtv::test
