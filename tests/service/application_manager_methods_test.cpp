// Every method of IApplicationManager: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "ApplicationManager.h"
#include "method_rows.h"
#include "recording_aip_event_callback.h"

namespace hbbtv::test {

namespace {

using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IApplicationManager;
using vantorel::hardware::hbbtv::V1_0::TolmAIPEvent;
using Numbers = hidl_vec<int32_t>;

constexpr char kSocket[] = "service_plugin_to_hbbtv_apm";

struct Rows : ServiceOf<&HIDL_FETCH_IApplicationManager> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"GetOwnerApp", Result<int32_t, int32_t>([](auto& s, auto cb) { return s.GetOwnerApp(-17, -19, cb); }), 201,
             R"({"appid": -17})", R"({"appid": 5, "orgid": -6})", "0 5 -6", "-1 -17 -19"},
            {"GetCurrentApp", Result<int32_t, int32_t>([](auto& s, auto cb) { return s.GetCurrentApp(cb); }), 203, "{}",
             R"({"appid": 5, "orgid": -6})", "0 5 -6", "-1 -1 -1"},
            {"GetChildApps", Result<Numbers, Numbers>([](auto& s, auto cb) { return s.GetChildApps(-1, 19, cb); }), 205,
             R"({"appid": -1, "orgid": 19})",
             R"({"appNum": 2, "appidArray": "             501            -502",)"
             R"( "orgidArray": "              19              20"})",
             "0 [501 -502] [19 20]", "-1 [] []"},
            {"CreateApplication", Result<int32_t, int32_t>([](auto& s, auto cb) {
                 return s.CreateApplication(-17, 19, "dvb://current.ait/13.a", true, false, cb);
             }),
             207, R"({"appid": -17, "orgid": 19, "url": "dvb://current.ait/13.a", "child": 1, "opapp": 0})",
             R"({"appid": 5, "orgid": -6})", "0 5 -6", "-1 -1 -1"},
            {"GetValue", Result<int32_t>([](auto& s, auto cb) { return s.GetValue(-17, 19, cb); }), 220,
             R"({"appid": -17, "orgid": 19})", R"({"value": -31})", "0 -31", "-1 0"},
            {"GetOtherKeys", Result<Numbers>([](auto& s, auto cb) { return s.GetOtherKeys(-17, 19, cb); }), 222,
             R"({"appid": -17, "orgid": 19})", R"({"num": 3, "k0": 415, "k1": -19, "k2": 413})", "0 [415 -19 413]",
             "-1 []"},
            {"GetMaxiMumValue", Result<int32_t>([](auto& s, auto cb) { return s.GetMaxiMumValue(-17, 19, cb); }), 224,
             R"({"appid": -17, "orgid": 19})", R"({"maxvalue": 1023})", "0 1023", "-1 0"},
            {"GetMaxiMumOtherKeys",
             Result<Numbers>([](auto& s, auto cb) { return s.GetMaxiMumOtherKeys(-17, 19, cb); }), 226,
             R"({"appid": -17, "orgid": 19})", R"({"num": 2, "k0": 415, "k1": 19})", "0 [415 19]", "-1 []"},
            {"GetKeyIcon", Result<hidl_string>([](auto& s, auto cb) { return s.GetKeyIcon(-17, 19, -403, cb); }), 233,
             R"({"appid": -17, "orgid": 19, "code": -403})", R"({"pointer": "icon"})", "0 icon", "-1 "},
            {"GetKeyLabel", Result<hidl_string>([](auto& s, auto cb) { return s.GetKeyLabel(-17, 19, -403, cb); }), 235,
             R"({"appid": -17, "orgid": 19, "code": -403})", R"({"label": "label"})", "0 label", "-1 "},
            {"GetVBResouceAllowed", Result<bool>([](auto& s, auto cb) { return s.GetVBResouceAllowed(-3, cb); }), 251,
             R"({"tabid": -3})", R"({"allowed": 2})", "0 1", "-1 0"},
            {"KeyConsumedByBrowser",
             Result<bool>([](auto& s, auto cb) { return s.KeyConsumedByBrowser(-3, -403, cb); }), 263,
             R"({"tabid": -3, "keyCode": -403})", R"({"consumed": -1})", "0 1", "-1 0"},
            {"GetAppType", Result<int32_t>([](auto& s, auto cb) { return s.GetAppType(-3, cb); }), 260,
             R"({"tabid": -3})", R"({"appType": -4})", "0 -4", "-1 0"},
        };
        return *rows;
    }

    static const std::vector<MethodRow>& OneWays() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"DestroyApplication", Status([](auto& s) { return s.DestroyApplication(-17, 19); }), 209,
             R"({"appid": -17, "orgid": 19})", "", "0", "-1"},
            {"Show", Status([](auto& s) { return s.Show(-17, 19); }), 210, R"({"appid": -17, "orgid": 19})", "", "0",
             "-1"},
            {"Hide", Status([](auto& s) { return s.Hide(-17, 19); }), 211, R"({"appid": -17, "orgid": 19})", "", "0",
             "-1"},
            {"SetValue", Status([](auto& s) {
                 return s.SetValue(-17, 19, 31, {415, -19});
             }),
             232, R"({"appid": -17, "orgid": 19, "value": 31, "keynum": 2, "k0": 415, "k1": -19})", "", "0", "-1"},
            {"SetBRAppToBI", Status([](auto& s) { return s.SetBRAppToBI(-3); }), 253, R"({"tabid": -3})", "", "0",
             "-1"},
            {"SetBIAppToBR", Status([](auto& s) { return s.SetBIAppToBR(-3); }), 262, R"({"tabid": -3})", "", "0",
             "-1"},
            {"NotifyDSMCCResponseToAPM", Status([](auto& s) { return s.NotifyDSMCCResponseToAPM("url", "path"); }), 265,
             R"({"url": "url", "path": "path"})", "", "0", "-1"},
            {"SetDeviceResolution", Status([](auto& s) { return s.SetDeviceResolution(3000000000, 2160); }), 249,
             R"({"width": 3000000000, "heigth": 2160})", "", "0", "-1"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{kSocket, 1, std::nullopt, "t"};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(ApplicationManager, Method, testing::ValuesIn(Rows::Requests()), NameOf);
INSTANTIATE_TEST_SUITE_P(ApplicationManager, OneWayMethod, testing::ValuesIn(Rows::OneWays()), NameOf);

TEST(ApplicationManagerMethodTable, HasARowForEveryMethodButThoseOfTheRegistration) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size() + Rows::OneWays().size()) + 2);
}

TEST(ApplicationManager, RegistersAndUnregistersWithoutAskingThePlatform) {
    ScratchDirectory directory;
    FakePlatform platform(kSocket, R"({"ret": 5})");
    const auto service = Rows::Make();
    EXPECT_EQ(0, static_cast<int32_t>(
                     service->RegisterCallback(TolmAIPEvent::KEY_PRESS, new RecordingAIPEventCallback, 0x5ffffffff)));
    EXPECT_EQ(0, static_cast<int32_t>(service->UnregisterCallback(TolmAIPEvent::KEY_PRESS, 0x5ffffffff)));
    EXPECT_TRUE(platform.Frames().empty());
    EXPECT_EQ(0, platform.Connections());
}

TEST(ApplicationManager, CannotRegisterOrUnregisterWithoutAnAdaptor) {
    ScratchDirectory directory;
    const NoMemoryForAdaptors noMemory;
    const auto service = Rows::Make();
    const android::sp<RecordingAIPEventCallback> client = new RecordingAIPEventCallback;
    EXPECT_EQ(-1, static_cast<int32_t>(service->RegisterCallback(TolmAIPEvent::KEY_PRESS, client, 1)));
    EXPECT_TRUE(client->Linked().empty());
    EXPECT_EQ(-1, static_cast<int32_t>(service->UnregisterCallback(TolmAIPEvent::KEY_PRESS, 1)));
}

TEST(ApplicationManager, DoesNotAskForTheChildrenOfNoApplication) {
    ScratchDirectory directory;
    FakePlatform platform(kSocket, R"({"ret": 0})");
    int status = 0;
    const auto returned =
        Rows::Make()->GetChildApps(-1, -1, [&](int32_t theStatus, const Numbers& appIds, const Numbers& orgIds) {
            status = theStatus;
            EXPECT_EQ(0u, appIds.size() + orgIds.size());
        });
    ASSERT_TRUE(returned.isOk());
    EXPECT_EQ(-1, status);
    EXPECT_TRUE(platform.Frames().empty());
}

TEST(ApplicationManager, GivesListsOfAnySensibleLength) {
    ScratchDirectory directory;
    FakePlatform platform(kSocket, R"({"ret": 0, "num": 65536, "appNum": 65536})");
    size_t length = 0;
    ASSERT_TRUE(Rows::Make()->GetOtherKeys(1, 2, [&](int32_t, const Numbers& keys) { length = keys.size(); }).isOk());
    EXPECT_EQ(65536u, length);
    const auto returned = Rows::Make()->GetChildApps(
        1, 2, [&](int32_t, const Numbers& appIds, const Numbers& orgIds) { length = appIds.size() + orgIds.size(); });
    ASSERT_TRUE(returned.isOk());
    EXPECT_EQ(131072u, length);
}

// A URL with a zero byte ends there.
TEST(ApplicationManager, CutsAUrlAtItsFirstZeroByte) {
    ScratchDirectory directory;
    FakePlatform platform(kSocket, R"({"ret": 0})");
    ASSERT_TRUE(Rows::Make()
                    ->CreateApplication(1, 2, hidl_string("a\0b", 3), false, true, [](int32_t, int32_t, int32_t) {})
                    .isOk());
    EXPECT_EQ("a", Parsed(platform.Frames().at(0).payload)["url"].asString());
    EXPECT_EQ(0, Parsed(platform.Frames().at(0).payload)["child"].asInt());
    EXPECT_EQ(1, Parsed(platform.Frames().at(0).payload)["opapp"].asInt());
}

}  // namespace hbbtv::test
