#include "common/text/base64.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace hbbtv {
namespace {

TEST(Base64, KeepsBytesOfEveryLength) {
    std::string bytes;
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(FromBase64(Base64(bytes)), bytes);
        bytes += static_cast<char>(i * 7);
    }
    EXPECT_EQ(Base64("foob"), "Zm9vYg==");
    EXPECT_THROW(FromBase64("Zm9"), std::runtime_error);
    EXPECT_THROW(FromBase64("Zm9*"), std::runtime_error);
}

}  // namespace
}  // namespace hbbtv
