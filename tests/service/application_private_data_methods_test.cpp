// Every method of IApplicationPrivatedata: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "ApplicationPrivatedata.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IApplicationPrivatedata;

struct Rows : ServiceOf<&HIDL_FETCH_IApplicationPrivatedata> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"GetFreeMem", Result<int32_t>([](auto& s, auto cb) { return s.GetFreeMem(cb); }), 0, "{}",
             R"({"memSize": -100})", "0 -100", "-1 0"},
            {"GetCurrentChannel", Result<int64_t>([](auto& s, auto cb) { return s.GetCurrentChannel(cb); }), 1, "{}",
             R"({"channel": "0xf0000001"})", "0 0xf0000001", "-1 0x0"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_app_priv", 17, 8};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(ApplicationPrivatedata, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(ApplicationPrivatedataMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()));
}

TEST(ApplicationPrivatedata, GivesNoChannelWhenTheHandleIsANumber) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_app_priv", R"({"ret": 0, "channel": 5})");
    EXPECT_EQ("-1 0x0", (Rows::Result<int64_t>([](auto& s, auto cb) { return s.GetCurrentChannel(cb); })()));
}

TEST(ApplicationPrivatedata, GivesHandlesWithAZeroHighHalf) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_app_priv", R"({"ret": 0, "channel": "0x12345678f0000001"})");
    EXPECT_EQ("0 0xf0000001", (Rows::Result<int64_t>([](auto& s, auto cb) { return s.GetCurrentChannel(cb); })()));
}

}  // namespace hbbtv::test
