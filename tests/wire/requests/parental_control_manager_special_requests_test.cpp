// What sets single operations of the parental control adaptor apart from the rows of its table.

#include <gtest/gtest.h>

#include "ipc/src/plugin/tolm_parental_control_manager_adaptor_ipc.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using Manager = TolmParentalControlManagerAdaptorIpc;

const void* const kObject = reinterpret_cast<const void*>(0x8000a1b2);

class ParentalControlManagerRequests : public ::testing::Test {
  protected:
    ~ParentalControlManagerRequests() override { Manager::DeleteInstance(); }

    Manager& Adaptor() { return *Manager::GetInstance(); }

    ScratchDirectory mDirectory;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0}"};
};

struct Bits {
    const char* json;
    unsigned read;
};

// 77777 is what the variable holds before.
constexpr Bits kBits[] = {
    {"0", 0},          {"9", 9},          {"2147483647", 2147483647}, {"-1", 4294967295}, {"-2147483648", 2147483648},
    {"2147483648", 0}, {"4294967295", 0}, {"-2147483649", 0},         {"\"9\"", 0},       {"null", 0},
};

}  // namespace

TEST_F(ParentalControlManagerRequests, TheLocalRatingGivesItsCountryToWhoWantsNoRating) {
    mPlatform.SetReply("{\"ret\": 0, \"parentRating\": 12, \"countryCode\": \"DEU\"}");
    std::string countryCode;
    EXPECT_EQ(Adaptor().GetLocalParentalRating(countryCode, nullptr), 0);
    EXPECT_EQ(countryCode, "DEU");
    ASSERT_EQ(mPlatform.Frames().size(), 1u);
    EXPECT_EQ(mPlatform.Frames()[0].payload, "{\n\t\"method\" : 50,\n\t\"type\" : 13\n}\n");
}

TEST_F(ParentalControlManagerRequests, TheLocalRatingThatFailsLeavesTheCountryToWhoWantsNoRating) {
    mPlatform.SetReply("{\"ret\": 4, \"parentRating\": 12, \"countryCode\": \"DEU\"}");
    std::string countryCode = "FRA";
    EXPECT_EQ(Adaptor().GetLocalParentalRating(countryCode, nullptr), 4);
    EXPECT_EQ(countryCode, "FRA");
}

TEST_F(ParentalControlManagerRequests, CountsAndLabelsAreTheBitsOfAnInt) {
    for (const Bits& bits : kBits) {
        SCOPED_TRACE(bits.json);
        const std::string number = bits.json;
        mPlatform.SetReply("{\"ret\": 0, \"num\": " + number + ", \"out_num\": " + number +
                           ", \"out_label\": " + number + "}");
        unsigned schemes = 77777;
        EXPECT_EQ(Adaptor().GetParentalRatingSchemeNum(kObject, schemes), 0);
        EXPECT_EQ(schemes, bits.read);
        unsigned ratings = 77777;
        EXPECT_EQ(Adaptor().GetRatingNum(kObject, ratings), 0);
        EXPECT_EQ(ratings, bits.read);
        unsigned labels = 77777;
        EXPECT_EQ(Adaptor().GetLabel(kObject, labels), 0);
        EXPECT_EQ(labels, bits.read);
    }
}

}  // namespace hbbtv::test
