// Every method of ILocalSystem: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "LocalSystem.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using android::hardware::hidl_string;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_ILocalSystem;

struct Rows : ServiceOf<&HIDL_FETCH_ILocalSystem> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"GetDeviceID", Result<hidl_string>([](auto& s, auto cb) { return s.GetDeviceID(cb); }), 0, "{}",
             R"({"deviceID": "deviceID of 0"})", "0 deviceID of 0", "-1 "},
            {"GetVendorName", Result<hidl_string>([](auto& s, auto cb) { return s.GetVendorName(cb); }), 2, "{}",
             R"({"vendorName": "vendorName of 2"})", "0 vendorName of 2", "-1 "},
            {"GetModelName", Result<hidl_string>([](auto& s, auto cb) { return s.GetModelName(cb); }), 4, "{}",
             R"({"modelName": "modelName of 4"})", "0 modelName of 4", "-1 "},
            {"GetFamilyName", Result<hidl_string>([](auto& s, auto cb) { return s.GetFamilyName(cb); }), 6, "{}",
             R"({"familyName": "familyName of 6"})", "0 familyName of 6", "-1 "},
            {"GetSoftwareVersion", Result<hidl_string>([](auto& s, auto cb) { return s.GetSoftwareVersion(cb); }), 8,
             "{}", R"({"softwareVersion": "softwareVersion of 8"})", "0 softwareVersion of 8", "-1 "},
            {"GetHardwareVersion", Result<hidl_string>([](auto& s, auto cb) { return s.GetHardwareVersion(cb); }), 10,
             "{}", R"({"hardwareVersion": "hardwareVersion of 10"})", "0 hardwareVersion of 10", "-1 "},
            {"GetSerialNumber", Result<hidl_string>([](auto& s, auto cb) { return s.GetSerialNumber(cb); }), 12, "{}",
             R"({"serialNumber": "serialNumber of 12"})", "0 serialNumber of 12", "-1 "},
            {"GetPvrEnabled", Result<bool>([](auto& s, auto cb) { return s.GetPvrEnabled(cb); }), 14, "{}",
             R"({"pvrEnabled": 1})", "0 1", "-1 0"},
            {"GetCiplusEnabled", Result<int32_t>([](auto& s, auto cb) { return s.GetCiplusEnabled(cb); }), 16, "{}",
             R"({"ciplusEnabled": -16})", "0 -16", "-1 0"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_local_system", 11, 6};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(LocalSystem, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(LocalSystemMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()));
}

TEST(LocalSystem, GivesWhetherRecordingIsEnabledAsABool) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_local_system", "");
    const auto ask = Rows::Result<bool>([](auto& s, auto cb) { return s.GetPvrEnabled(cb); });
    for (const char* enabled : {"1", "2", "-1", "256", "2147483647", "-2147483648", "true"}) {
        SCOPED_TRACE(enabled);
        platform.SetReply(std::string(R"({"ret": 0, "pvrEnabled": )") + enabled + "}");
        EXPECT_EQ("0 1", ask());
    }
    for (const char* reply : {R"({"ret": 0, "pvrEnabled": 0})", R"({"ret": 0})", R"({"ret": 0, "pvrEnabled": "1"})"}) {
        SCOPED_TRACE(reply);
        platform.SetReply(reply);
        EXPECT_EQ("0 0", ask());
    }
}

TEST(LocalSystem, HandsTheNumberOfCiPlusOn) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_local_system", "");
    const auto ask = Rows::Result<int32_t>([](auto& s, auto cb) { return s.GetCiplusEnabled(cb); });
    for (const char* enabled : {"0", "1", "2", "-1", "2147483647", "-2147483648"}) {
        platform.SetReply(std::string(R"({"ret": 0, "ciplusEnabled": )") + enabled + "}");
        EXPECT_EQ(std::string("0 ") + enabled, ask());
    }
}

}  // namespace hbbtv::test
