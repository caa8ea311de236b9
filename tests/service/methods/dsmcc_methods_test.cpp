// The registration for files, of which the platform is not notified.
#include <gtest/gtest.h>

#include "method_rows.h"

namespace hbbtv::test {

TEST(Dsmcc, RegistersAndUnregistersWithoutAskingThePlatform) {
    const ScratchDirectory directory;
    EXPECT_EQ(Answer("RegisterCallback", Parsed(R"(["@listen"])")), "[0]");
    EXPECT_EQ(Answer("UnregisterCallback"), "[0]");
}

TEST(Dsmcc, CannotRegisterWithoutAnAdaptor) {
    const ScratchDirectory directory;
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(Answer("RegisterCallback", Parsed(R"(["@listen"])")), "[-1]");
}

TEST(Dsmcc, UnregistersWithoutAnAdaptorToo) {
    const ScratchDirectory directory;
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(Answer("UnregisterCallback"), "[0]");
}

}  // namespace hbbtv::test
