// Every method of ICapabilities: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "Capabilities.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using android::hardware::hidl_string;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_ICapabilities;

struct Rows : ServiceOf<&HIDL_FETCH_ICapabilities> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"GetXmlCapabilities", Result<hidl_string>([](auto& s, auto cb) { return s.GetXmlCapabilities(cb); }), 0,
             "{}", R"({"xml_capabilities": "<x y='0'/>"})", "0 <x y='0'/>", "-1 ", "-1"},
            {"GetExtraSDVideoDecodes", Result<uint32_t>([](auto& s, auto cb) { return s.GetExtraSDVideoDecodes(cb); }),
             1, "{}", R"({"amount_of_decodes": 4000000001})", "0 4000000001", "-1 0"},
            {"GetExtraHDVideoDecodes", Result<uint32_t>([](auto& s, auto cb) { return s.GetExtraHDVideoDecodes(cb); }),
             2, "{}", R"({"amount_of_decodes": 4000000002})", "0 4000000002", "-1 0"},
            {"HasCapability", Result<bool>([](auto& s, auto cb) { return s.HasCapability(-3, cb); }), 3,
             R"({"capability_type": -3})", R"({"available": true})", "0 1", "-1 0"},
            {"GetTerminalCapability", Result<hidl_string>([](auto& s, auto cb) { return s.GetTerminalCapability(cb); }),
             4, "{}", R"({"terminalCap": "cap of 4"})", "0 cap of 4", "-1 ", "-1"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_cap", 10, 10};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(Capabilities, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(CapabilitiesMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()));
}

}  // namespace hbbtv::test
