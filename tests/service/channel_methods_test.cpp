// Every method of IChannel: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "Channel.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using android::hardware::hidl_string;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IChannel;
using vantorel::hardware::hbbtv::V1_0::TolmChannelId;
using vantorel::hardware::hbbtv::V1_0::TolmChannelType;

// A handle as a client may give it: the platform gets the low half.
constexpr int64_t kObject = 0x7777777780001000;

struct Rows : ServiceOf<&HIDL_FETCH_IChannel> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"Release", Status([](auto& s) { return s.Release(kObject); }), 0, R"({"c_handle": "0x80001000"})", "{}",
             "0", "-1"},
            {"GetChannelType", Result<TolmChannelType>([](auto& s, auto cb) { return s.GetChannelType(kObject, cb); }),
             1, R"({"c_handle": "0x80001000"})", R"({"channelType": 256})", "0 256", "-1 0"},
            {"GetIdType", Result<TolmChannelId>([](auto& s, auto cb) { return s.GetIdType(kObject, cb); }), 2,
             R"({"c_handle": "0x80001000"})", R"({"idType": 13})", "0 13", "-1 0"},
            {"GetCcid", Result<hidl_string>([](auto& s, auto cb) { return s.GetCcid(kObject, cb); }), 3,
             R"({"c_handle": "0x80001000"})", R"({"ccid": "ccid of 3"})", "0 ccid of 3", "-1 "},
            {"GetTunerID", Result<hidl_string>([](auto& s, auto cb) { return s.GetTunerID(kObject, cb); }), 4,
             R"({"c_handle": "0x80001000"})", R"({"tunerId": "tunerId of 4"})", "0 tunerId of 4", "-1 "},
            {"GetOnid", Result<int32_t>([](auto& s, auto cb) { return s.GetOnid(kObject, cb); }), 5,
             R"({"c_handle": "0x80001000"})", R"({"onid": -10})", "0 -10", "-1 0"},
            {"GetNid", Result<int32_t>([](auto& s, auto cb) { return s.GetNid(kObject, cb); }), 6,
             R"({"c_handle": "0x80001000"})", R"({"nid": -11})", "0 -11", "-1 0"},
            {"GetTsid", Result<int32_t>([](auto& s, auto cb) { return s.GetTsid(kObject, cb); }), 7,
             R"({"c_handle": "0x80001000"})", R"({"tsid": -12})", "0 -12", "-1 0"},
            {"GetSid", Result<int32_t>([](auto& s, auto cb) { return s.GetSid(kObject, cb); }), 8,
             R"({"c_handle": "0x80001000"})", R"({"sid": -13})", "0 -13", "-1 0"},
            {"GetSourceID", Result<int32_t>([](auto& s, auto cb) { return s.GetSourceID(kObject, cb); }), 9,
             R"({"c_handle": "0x80001000"})", R"({"sourceId": -14})", "0 -14", "-1 0"},
            {"GetFreq", Result<int32_t>([](auto& s, auto cb) { return s.GetFreq(kObject, cb); }), 10,
             R"({"c_handle": "0x80001000"})", R"({"freq": -15})", "0 -15", "-1 0"},
            {"GetCni", Result<int32_t>([](auto& s, auto cb) { return s.GetCni(kObject, cb); }), 11,
             R"({"c_handle": "0x80001000"})", R"({"cni": -16})", "0 -16", "-1 0"},
            {"SetName", Status([](auto& s) { return s.SetName(kObject, "name 12"); }), 12,
             R"({"c_handle": "0x80001000", "name": "name 12"})", "{}", "0", "-1"},
            {"GetName", Result<hidl_string>([](auto& s, auto cb) { return s.GetName(kObject, cb); }), 13,
             R"({"c_handle": "0x80001000"})", R"({"name": "name of 13"})", "0 name of 13", "-1 "},
            {"GetMajorChannel", Result<int32_t>([](auto& s, auto cb) { return s.GetMajorChannel(kObject, cb); }), 14,
             R"({"c_handle": "0x80001000"})", R"({"majorChannel": -19})", "0 -19", "-1 0"},
            {"GetMinorChannel", Result<int32_t>([](auto& s, auto cb) { return s.GetMinorChannel(kObject, cb); }), 15,
             R"({"c_handle": "0x80001000"})", R"({"minorChannel": -20})", "0 -20", "-1 0"},
            {"GetDsd", Result<hidl_string>([](auto& s, auto cb) { return s.GetDsd(kObject, cb); }), 16,
             R"({"c_handle": "0x80001000"})", R"({"dsd": "dsd of 16"})", "0 dsd of 16", "-1 "},
            {"GetFavourite", Result<bool>([](auto& s, auto cb) { return s.GetFavourite(kObject, cb); }), 17,
             R"({"c_handle": "0x80001000"})", R"({"favourite": true})", "0 1", "-1 0"},
            {"GetFavIDsNum", Result<uint32_t>([](auto& s, auto cb) { return s.GetFavIDsNum(kObject, cb); }), 18,
             R"({"c_handle": "0x80001000"})", R"({"num": 4000000018})", "0 4000000018", "-1 0"},
            {"GetFavIDsNameByIndex",
             Result<hidl_string>([](auto& s, auto cb) { return s.GetFavIDsNameByIndex(kObject, 4000000001u, cb); }), 19,
             R"({"c_handle": "0x80001000", "index": 4000000001})", R"({"name": "name of 19"})", "0 name of 19", "-1 "},
            {"GetLocked", Result<bool>([](auto& s, auto cb) { return s.GetLocked(kObject, cb); }), 20,
             R"({"c_handle": "0x80001000"})", R"({"locked": true})", "0 1", "-1 0"},
            {"GetManualBlock", Result<bool>([](auto& s, auto cb) { return s.GetManualBlock(kObject, cb); }), 21,
             R"({"c_handle": "0x80001000"})", R"({"manualBlock": true})", "0 1", "-1 0"},
            {"GetIpBroadcastID", Result<hidl_string>([](auto& s, auto cb) { return s.GetIpBroadcastID(kObject, cb); }),
             22, R"({"c_handle": "0x80001000"})", R"({"ipBroadcastId": "ipBroadcastId of 22"})",
             "0 ipBroadcastId of 22", "-1 "},
            {"GetChannelMaxBitRate",
             Result<uint32_t>([](auto& s, auto cb) { return s.GetChannelMaxBitRate(kObject, cb); }), 23,
             R"({"c_handle": "0x80001000"})", R"({"maxBitrate": 4000000023})", "0 4000000023", "-1 0"},
            {"GetChannelTTR", Result<int32_t>([](auto& s, auto cb) { return s.GetChannelTTR(kObject, cb); }), 24,
             R"({"c_handle": "0x80001000"})", R"({"ttr": -29})", "0 -29", "-1 0"},
            {"GetRecordable", Result<bool>([](auto& s, auto cb) { return s.GetRecordable(kObject, cb); }), 25,
             R"({"c_handle": "0x80001000"})", R"({"recordable": true})", "0 1", "-1 0"},
            {"SetLongName", Status([](auto& s) { return s.SetLongName(kObject, "longname 26"); }), 26,
             R"({"c_handle": "0x80001000", "longname": "longname 26"})", "{}", "0", "-1"},
            {"GetLongName", Result<hidl_string>([](auto& s, auto cb) { return s.GetLongName(kObject, cb); }), 27,
             R"({"c_handle": "0x80001000"})", R"({"longname": "longname of 27"})", "0 longname of 27", "-1 "},
            {"SetDescription", Status([](auto& s) { return s.SetDescription(kObject, "description 28"); }), 28,
             R"({"c_handle": "0x80001000", "description": "description 28"})", "{}", "0", "-1"},
            {"GetDescription", Result<hidl_string>([](auto& s, auto cb) { return s.GetDescription(kObject, cb); }), 29,
             R"({"c_handle": "0x80001000"})", R"({"description": "description of 29"})", "0 description of 29", "-1 "},
            {"GetAuthorized", Result<bool>([](auto& s, auto cb) { return s.GetAuthorized(kObject, cb); }), 30,
             R"({"c_handle": "0x80001000"})", R"({"authorized": true})", "0 1", "-1 0"},
            {"SetGenreNum", Status([](auto& s) { return s.SetGenreNum(kObject, 4000000001u); }), 31,
             R"({"c_handle": "0x80001000", "num": 4000000001})", "{}", "0", "-1"},
            {"SetGenreByIndex", Status([](auto& s) { return s.SetGenreByIndex(kObject, 4000000001u, "genre 32"); }), 32,
             R"({"c_handle": "0x80001000", "index": 4000000001, "genre": "genre 32"})", "{}", "0", "-1"},
            {"GetGenreNum", Result<uint32_t>([](auto& s, auto cb) { return s.GetGenreNum(kObject, cb); }), 33,
             R"({"c_handle": "0x80001000"})", R"({"num": 4000000033})", "0 4000000033", "-1 0"},
            {"GetGenreByIndex",
             Result<hidl_string>([](auto& s, auto cb) { return s.GetGenreByIndex(kObject, 4000000001u, cb); }), 34,
             R"({"c_handle": "0x80001000", "index": 4000000001})", R"({"genre": "genre of 34"})", "0 genre of 34",
             "-1 "},
            {"SetHidden", Status([](auto& s) { return s.SetHidden(kObject, false); }), 35,
             R"({"c_handle": "0x80001000", "hidden": false})", "{}", "0", "-1"},
            {"GetHidden", Result<bool>([](auto& s, auto cb) { return s.GetHidden(kObject, cb); }), 36,
             R"({"c_handle": "0x80001000"})", R"({"hidden": true})", "0 1", "-1 0"},
            {"SetLogoURL", Status([](auto& s) { return s.SetLogoURL(kObject, "url 37"); }), 37,
             R"({"c_handle": "0x80001000", "url": "url 37"})", "{}", "0", "-1"},
            {"GetLogoURL", Result<hidl_string>([](auto& s, auto cb) { return s.GetLogoURL(kObject, cb); }), 38,
             R"({"c_handle": "0x80001000"})", R"({"url": "url of 38"})", "0 url of 38", "-1 "},
            {"GetField", Result<hidl_string>([](auto& s, auto cb) { return s.GetField(kObject, "fieldId 39", cb); }),
             39, R"({"c_handle": "0x80001000", "fieldId": "fieldId 39"})", R"({"field": "field of 39"})",
             "0 field of 39", "-1 "},
            {"GetLogo", Result<hidl_string>([](auto& s, auto cb) { return s.GetLogo(kObject, 1401, 1402, cb); }), 40,
             R"({"c_handle": "0x80001000", "width": 1401, "height": 1402})", R"({"logo": "logo of 40"})",
             "0 logo of 40", "-1 "},
            {"GetTerminalChannel", Result<int32_t>([](auto& s, auto cb) { return s.GetTerminalChannel(kObject, cb); }),
             41, R"({"c_handle": "0x80001000"})", R"({"terminalChannel": -46})", "0 -46", "-1 0"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_vb_chn", 2, 12};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(Channel, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(ChannelMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()));
}

TEST(Channel, PassesKindsThatNobodyKnowsOn) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb_chn", R"({"ret": 0, "channelType": -77, "idType": 2147483647})");
    const auto service = Rows::Make();
    int32_t channelType = 0;
    int32_t idType = 0;
    ASSERT_TRUE(
        service
            ->GetChannelType(kObject, [&](int32_t, TolmChannelType type) { channelType = static_cast<int32_t>(type); })
            .isOk());
    ASSERT_TRUE(
        service->GetIdType(kObject, [&](int32_t, TolmChannelId type) { idType = static_cast<int32_t>(type); }).isOk());
    EXPECT_EQ(-77, channelType);
    EXPECT_EQ(2147483647, idType);
}

TEST(Channel, CarriesTextsWhole) {
    const std::string text = std::string(64 * 1024, 'x') + "\xf0\x9f\x93\xba\"\\\n" + std::string(1, '\0') + "end";
    ScratchDirectory directory;
    Json::Value reply;
    reply["ret"] = 0;
    reply["name"] = text;
    FakePlatform platform("service_plugin_to_hbbtv_vb_chn", reply.toStyledString());
    const auto service = Rows::Make();
    std::string name;
    ASSERT_TRUE(service->GetName(kObject, [&](int32_t, const hidl_string& value) { name = value; }).isOk());
    EXPECT_EQ(text, name);
    ASSERT_TRUE(service->SetName(kObject, text).isOk());
    EXPECT_EQ(text, Parsed(platform.Frames().at(1).payload)["name"].asString());
}

}  // namespace hbbtv::test
