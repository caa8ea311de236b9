// Every method of IMtm: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "Mtm.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IMtm;

struct Rows : ServiceOf<&HIDL_FETCH_IMtm> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"OnTabCreated", Status([](auto& s) { return s.OnTabCreated(-3); }), 0, R"({"tabid": -3})", "{}", "0",
             "-1"},
            {"OnTabDestroyed", Status([](auto& s) { return s.OnTabDestroyed(-3); }), 1, R"({"tabid": -3})", "{}", "0",
             "-1"},
            {"OnRenderRequestCloseTab", Status([](auto& s) { return s.OnRenderRequestCloseTab(-3); }), 2,
             R"({"tabid": -3})", "{}", "0", "-1"},
            {"OnAllTabsDestroyed", Status([](auto& s) { return s.OnAllTabsDestroyed(); }), 3, "{}", "{}", "0", "-1"},
            {"OnTabFocus", Status([](auto& s) { return s.OnTabFocus(-3); }), 4, R"({"tabid": -3})", "{}", "0", "-1"},
            {"OnTabHide", Status([](auto& s) { return s.OnTabHide(-3); }), 5, R"({"tabid": -3})", "{}", "0", "-1"},
            {"OnTabShow", Status([](auto& s) { return s.OnTabShow(-3); }), 6, R"({"tabid": -3})", "{}", "0", "-1"},
            {"OnLoadingStateChanged", Status([](auto& s) { return s.OnLoadingStateChanged(true, false, true); }), 6,
             R"({"is_loading": true, "can_back": false, "can_forward": true})", "{}", "0", "-1"},
            {"OnAddressBarChanged", Status([](auto& s) { return s.OnAddressBarChanged(-3, "url 8"); }), 8,
             R"({"tabid": -3, "url": "url 8"})", "{}", "0", "-1"},
            {"OnLoadProgressChanged", Status([](auto& s) { return s.OnLoadProgressChanged(-3, 0.625); }), 9,
             R"({"tabid": -3, "progress": 0.625})", "{}", "0", "-1"},
            {"OnTabTitleChanged", Status([](auto& s) { return s.OnTabTitleChanged(-3, "title 10"); }), 10,
             R"({"tabid": -3, "title": "title 10"})", "{}", "0", "-1"},
            {"OnTabURLChanged", Status([](auto& s) { return s.OnTabURLChanged(-3, "url 11"); }), 11,
             R"({"tabid": -3, "title": "url 11"})", "{}", "0", "-1"},
            {"OnTabLoadFinished", Status([](auto& s) { return s.OnTabLoadFinished(-3, "url 12"); }), 12,
             R"({"tabid": -3, "url": "url 12"})", "{}", "0", "-1"},
            {"OnTabLoadFailed", Status([](auto& s) { return s.OnTabLoadFailed(-3, "url 13", -404, "not there"); }), 13,
             R"({"tabid": -3, "url": "url 13", "error_code": -404, "description": "not there"})", "{}", "0", "-1"},
            {"OnMemoryWarningDetected", Status([](auto& s) { return s.OnMemoryWarningDetected(-2); }), 14,
             R"({"mem_status": -2})", "{}", "0", "-1"},
            {"OnMemoryReduced", Status([](auto& s) { return s.OnMemoryReduced(-2, -3); }), 15,
             R"({"tabid": -3, "level": -2})", "{}", "0", "-1"},
            {"OnBlinkOutOfMemory", Status([](auto& s) { return s.OnBlinkOutOfMemory(-3); }), 16, R"({"tabid": -3})",
             "{}", "0", "-1"},
            {"OnTabDocumentLoadedInFrame", Status([](auto& s) { return s.OnTabDocumentLoadedInFrame(-3); }), 33,
             R"({"tabid": -3})", "{}", "0", "-1"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_mtm_to_hbbtv", 1, 0};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(Mtm, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(MtmMethodTable, HasARowForEveryMethodButThoseOfTheRegistration) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()) + 2);
}

}  // namespace hbbtv::test
