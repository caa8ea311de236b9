// The methods of IDsmcc: the release of a file, which the platform answers, as a row; the request, which it does not,
// and the registration, of which it is not told, by themselves.

#include <gtest/gtest.h>

#include "Dsmcc.h"
#include "method_rows.h"
#include "recording_dsmcc_callback.h"

namespace hbbtv::test {

namespace {

using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IDsmcc;

struct Rows : ServiceOf<&HIDL_FETCH_IDsmcc> {
    static const std::vector<MethodRow>& All() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"OnReleaseFile", Status([](auto& s) { return s.OnReleaseFile("url 1", 0x7777777780001000); }), 1,
             R"({"url": "url 1", "context": "0x80001000"})", "{}", "0", "-1"},
        };
        return *rows;
    }
};

// What the platform is not asked, and so does not answer.
constexpr int kMethodsWithoutARow = 3;  // RegisterCallback, UnregisterCallback, OnRequestFile

const auto kRequestFile = Rows::Status([](auto& s) { return s.OnRequestFile("url 0", 0x7777777780001000); });
const auto kRegister = Rows::Status([](auto& s) { return s.RegisterCallback(new RecordingDsmccCallback); });
const auto kUnregister = Rows::Status([](auto& s) { return s.UnregisterCallback(); });

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_dsmcc_to_hbbtv", 2, 20};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(Dsmcc, Method, testing::ValuesIn(Rows::All()), NameOf);

TEST(DsmccMethodTable, HasEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::All().size()) + kMethodsWithoutARow);
}

class DsmccMethods : public testing::Test {
  protected:
    ScratchDirectory mDirectory;
};

TEST_F(DsmccMethods, OnRequestFileTellsThePlatformAndWaitsForNoReply) {
    // Answers requests only: whoever waited for a reply would get 5.
    FakePlatform platform(UnderTest().socket, R"({"ret": 5})");
    EXPECT_EQ("0", kRequestFile());
    ASSERT_TRUE(platform.WaitForFrames(1));
    EXPECT_EQ(kOneWay, platform.Frames()[0].type);
    EXPECT_EQ(2, platform.Frames()[0].port);
    EXPECT_EQ(Parsed(R"({"type": 20, "method": 0, "url": "url 0", "context": "0x80001000"})"),
              Parsed(platform.Frames()[0].payload));
}

TEST_F(DsmccMethods, OnRequestFileGivesMinusOneWhenThePlatformIsDown) {
    EXPECT_EQ("-1", kRequestFile());
}

TEST_F(DsmccMethods, OnRequestFileGivesMinusOneWithoutAnAdaptor) {
    FakePlatform platform(UnderTest().socket, "");
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ("-1", kRequestFile());
    EXPECT_EQ(0, platform.Connections());
}

TEST_F(DsmccMethods, RegistrationSucceedsWithoutAPlatform) {
    EXPECT_EQ("0", kRegister());
    EXPECT_EQ("0", kUnregister());
}

TEST_F(DsmccMethods, RegistrationGivesMinusOneWithoutAnAdaptor) {
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ("-1", kRegister());
}

TEST_F(DsmccMethods, TheEndOfARegistrationNeedsNoAdaptor) {
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ("0", kUnregister());
}

}  // namespace hbbtv::test
