// A descriptor with bytes of every kind.
#include <gtest/gtest.h>

#include "Programme.h"
#include "method_rows.h"

namespace hbbtv::test {

TEST(Programme, GivesADescriptorWithItsZeroBytesInFullLength) {
    ScratchDirectory directory;
    FakePlatform platform(UnderTest().Socket(),
                          R"({"ret": 0, "length": 5, "k0": 95, "k1": 0, "k2": 255, "k3": 256, "k4": 0})");
    std::string descriptor;
    const auto keep = [&](int32_t, const android::hardware::hidl_string& bytes) {
        descriptor.assign(bytes.c_str(), bytes.size());
    };
    const android::sp programme(vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IProgramme("default"));
    ASSERT_TRUE(programme->GetSIDescriptorByIndex(1, 0, keep).isOk());
    EXPECT_EQ(descriptor, std::string("_\0\xff\0\0", 5));
}

}  // namespace hbbtv::test
