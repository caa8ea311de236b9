// Every method of IProgramme: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "Programme.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using android::hardware::hidl_string;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IProgramme;
using vantorel::hardware::hbbtv::V1_0::TolmHbbtvProgrammeIDType;

// A handle as a client may give it: the platform gets the low half.
constexpr int64_t kObject = 0x7777777780001000;

struct Rows : ServiceOf<&HIDL_FETCH_IProgramme> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"GetName", Result<hidl_string>([](auto& s, auto cb) { return s.GetName(kObject, cb); }), 1,
             R"({"handle": "0x80001000"})", R"({"out_name": "out_name of 1"})", "0 out_name of 1", "-1 "},
            {"SetName", Status([](auto& s) { return s.SetName(kObject, "in_name 3"); }), 3,
             R"({"handle": "0x80001000", "in_name": "in_name 3"})", "{}", "0", "-1"},
            {"GetDescription", Result<hidl_string>([](auto& s, auto cb) { return s.GetDescription(kObject, cb); }), 7,
             R"({"handle": "0x80001000"})", R"({"out_desc": "out_desc of 7"})", "0 out_desc of 7", "-1 "},
            {"SetDescription", Status([](auto& s) { return s.SetDescription(kObject, "in_desc 9"); }), 9,
             R"({"handle": "0x80001000", "in_desc": "in_desc 9"})", "{}", "0", "-1"},
            {"GetLongDescription",
             Result<hidl_string>([](auto& s, auto cb) { return s.GetLongDescription(kObject, cb); }), 10,
             R"({"handle": "0x80001000"})", R"({"out_longDesc": "out_longDesc of 10"})", "0 out_longDesc of 10", "-1 "},
            {"SetLongDescription", Status([](auto& s) { return s.SetLongDescription(kObject, "in_longDesc 12"); }), 12,
             R"({"handle": "0x80001000", "in_longDesc": "in_longDesc 12"})", "{}", "0", "-1"},
            {"GetStartTime", Result<int32_t>([](auto& s, auto cb) { return s.GetStartTime(kObject, cb); }), 13,
             R"({"handle": "0x80001000"})", R"({"out_startTime": -23})", "0 -23", "-1 0"},
            {"SetStartTime", Status([](auto& s) { return s.SetStartTime(kObject, -151); }), 15,
             R"({"handle": "0x80001000", "in_startTime": -151})", "{}", "0", "-1"},
            {"GetDuration", Result<int32_t>([](auto& s, auto cb) { return s.GetDuration(kObject, cb); }), 16,
             R"({"handle": "0x80001000"})", R"({"out_duration": -26})", "0 -26", "-1 0"},
            {"SetDuration", Status([](auto& s) { return s.SetDuration(kObject, -181); }), 18,
             R"({"handle": "0x80001000", "in_duration": -181})", "{}", "0", "-1"},
            {"GetChannelID", Result<hidl_string>([](auto& s, auto cb) { return s.GetChannelID(kObject, cb); }), 19,
             R"({"handle": "0x80001000"})", R"({"out_channelID": "out_channelID of 19"})", "0 out_channelID of 19",
             "-1 "},
            {"SetChannelID", Status([](auto& s) { return s.SetChannelID(kObject, "in_channelID 21"); }), 21,
             R"({"handle": "0x80001000", "in_channelID": "in_channelID 21"})", "{}", "0", "-1"},
            {"GetProgramID", Result<hidl_string>([](auto& s, auto cb) { return s.GetProgramID(kObject, cb); }), 28,
             R"({"handle": "0x80001000"})", R"({"out_programID": "out_programID of 28"})", "0 out_programID of 28",
             "-1 "},
            {"SetProgramID", Status([](auto& s) { return s.SetProgramID(kObject, "in_programID 30"); }), 30,
             R"({"handle": "0x80001000", "in_programID": "in_programID 30"})", "{}", "0", "-1"},
            {"GetProgramIDType",
             Result<TolmHbbtvProgrammeIDType>([](auto& s, auto cb) { return s.GetProgramIDType(kObject, cb); }), 31,
             R"({"handle": "0x80001000"})", R"({"out_programIDType": 121})", "0 121", "-1 0"},
            {"SetProgramIDType",
             Status([](auto& s) { return s.SetProgramIDType(kObject, TolmHbbtvProgrammeIDType::TVA_GROUP_CRID); }), 33,
             R"({"handle": "0x80001000", "in_programIDType": 2})", "{}", "0", "-1"},
            {"GetParentalRatings", Result<int64_t>([](auto& s, auto cb) { return s.GetParentalRatings(kObject, cb); }),
             34, R"({"handle": "0x80001000"})", R"({"out_handle": "0xf0000034"})", "0 0xf0000034", "-1 0x0"},
            {"GetSIDescriptorNum", Result<uint32_t>([](auto& s, auto cb) { return s.GetSIDescriptorNum(kObject, cb); }),
             76, R"({"handle": "0x80001000"})", R"({"out_num": 4000000076})", "0 4000000076", "-1 0"},
            {"GetSIDescriptorByIndex",
             Result<hidl_string>([](auto& s, auto cb) { return s.GetSIDescriptorByIndex(kObject, 4000000781u, cb); }),
             78, R"({"handle": "0x80001000", "in_index": 4000000781})", R"({"length": 2, "k0": 65, "k1": 322})", "0 AB",
             "-1 "},
        };
        return *rows;
    }

    static const std::vector<MethodRow>& OneWays() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"Release", Status([](auto& s) { return s.Release(kObject); }), 0, R"({"handle": "0x80001000"})", "{}", "0",
             "-1"},
            {"GetSIDescriptorByEventId",
             Status([](auto& s) { return s.GetSIDescriptorByEventId(kObject, -791, -792, -793); }), 79,
             R"({"handle": "0x80001000", "in_descTag": -791, "in_descTagExt": -792, "in_priDataSpec": -793})", "{}",
             "0", "-1"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_program", 13, 5};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(Programme, Method, testing::ValuesIn(Rows::Requests()), NameOf);
INSTANTIATE_TEST_SUITE_P(Programme, OneWayMethod, testing::ValuesIn(Rows::OneWays()), NameOf);

TEST(ProgrammeMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size() + Rows::OneWays().size()));
}

TEST(Programme, GivesADescriptorWithItsZeroBytesInFullLength) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_program",
                          R"({"ret": 0, "length": 5, "k0": 95, "k1": 0, "k2": 255, "k3": 256, "k4": 0})");
    std::string descriptor;
    const auto keep = [&](int32_t, const hidl_string& bytes) { descriptor.assign(bytes.c_str(), bytes.size()); };
    ASSERT_TRUE(Rows::Make()->GetSIDescriptorByIndex(kObject, 0, keep).isOk());
    EXPECT_EQ(std::string("_\0\xff\0\0", 5), descriptor);
}

TEST(Programme, GivesHandlesWithAZeroHighHalf) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_program", R"({"ret": 0, "out_handle": "0x12345678f0000001"})");
    int64_t ratings = -1;
    const auto keep = [&](int32_t, int64_t handle) { ratings = handle; };
    ASSERT_TRUE(Rows::Make()->GetParentalRatings(kObject, keep).isOk());
    EXPECT_EQ(0xf0000001, ratings);
}

}  // namespace hbbtv::test
