// The methods of IDsmcc: the release of a file, which the platform answers, and the request for one, which it does not,
// as rows; the registration, of which it is not told, by itself.

#include <gtest/gtest.h>

#include "Dsmcc.h"
#include "method_rows.h"
#include "recording_dsmcc_callback.h"

namespace hbbtv::test {

namespace {

using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IDsmcc;

struct Rows : ServiceOf<&HIDL_FETCH_IDsmcc> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"OnReleaseFile", Status([](auto& s) { return s.OnReleaseFile("url 1", 0x7777777780001000); }), 1,
             R"({"url": "url 1", "context": "0x80001000"})", "{}", "0", "-1"},
        };
        return *rows;
    }

    static const std::vector<MethodRow>& OneWays() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"OnRequestFile", Status([](auto& s) { return s.OnRequestFile("url 0", 0x7777777780001000); }), 0,
             R"({"url": "url 0", "context": "0x80001000"})", "", "0", "-1"},
        };
        return *rows;
    }
};

const auto kRegister = Rows::Status([](auto& s) { return s.RegisterCallback(new RecordingDsmccCallback); });
const auto kUnregister = Rows::Status([](auto& s) { return s.UnregisterCallback(); });

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_dsmcc_to_hbbtv", 2, 20};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(Dsmcc, Method, testing::ValuesIn(Rows::Requests()), NameOf);
INSTANTIATE_TEST_SUITE_P(Dsmcc, OneWayMethod, testing::ValuesIn(Rows::OneWays()), NameOf);

TEST(DsmccMethodTable, HasARowForEveryMethodButThoseOfTheRegistration) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size() + Rows::OneWays().size()) + 2);
}

TEST(Dsmcc, RegistersAndUnregistersWithoutAskingThePlatform) {
    const ScratchDirectory directory;
    EXPECT_EQ("0", kRegister());
    EXPECT_EQ("0", kUnregister());
}

TEST(Dsmcc, CannotRegisterWithoutAnAdaptor) {
    const ScratchDirectory directory;
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ("-1", kRegister());
}

TEST(Dsmcc, UnregistersWithoutAnAdaptorToo) {
    const ScratchDirectory directory;
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ("0", kUnregister());
}

}  // namespace hbbtv::test
