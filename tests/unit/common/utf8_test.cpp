#include "common/text/utf8.h"

#include <gtest/gtest.h>

namespace hbbtv::test {

namespace {

std::string Appended(uint32_t code) {
    std::string text = "a";
    AppendUtf8(text, code);
    return text;
}

}  // namespace

TEST(AppendedUtf8, HasTheLengthOfTheCodePoint) {
    EXPECT_EQ(Appended(0), std::string("a\0", 2));
    EXPECT_EQ(Appended(0x7f), "a\x7f");
    EXPECT_EQ(Appended(0x80), "a\xc2\x80");
    EXPECT_EQ(Appended(0x7ff), "a\xdf\xbf");
    EXPECT_EQ(Appended(0x800), "a\xe0\xa0\x80");
    EXPECT_EQ(Appended(0xffff), "a\xef\xbf\xbf");
    EXPECT_EQ(Appended(0x10000), "a\xf0\x90\x80\x80");
    EXPECT_EQ(Appended(0x10ffff), "a\xf4\x8f\xbf\xbf");
}

}  // namespace hbbtv::test
