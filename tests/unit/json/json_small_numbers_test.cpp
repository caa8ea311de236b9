// Numbers that are too small or too large for a double: the C++ library of a Linux machine and that of a television
// read them differently, ParseJson() does not.
#include <json/json.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "ipc/src/tolm_json_text.h"

namespace {

bool Parses(const std::string& text, Json::Value& document) {
    return tolm::ParseJson(std::vector<unsigned char>(text.begin(), text.end()), document);
}

// Returns the value of a number, which is the document, or -1 if it is refused.
double Parsed(const std::string& number) {
    Json::Value document;
    return Parses(number, document) ? document.asDouble() : -1;
}

std::string ZerosAnd(size_t zeros, const char* digits) {
    return "0." + std::string(zeros, '0') + digits;
}

TEST(SmallNumbers, AreReadAsTheNearestDouble) {
    EXPECT_EQ(Parsed("1e-308"), 1e-308);
    EXPECT_EQ(Parsed("1e-320"), 1e-320);
    EXPECT_EQ(Parsed("1E-320"), 1e-320);
    EXPECT_EQ(Parsed("-1e-320"), -1e-320);
    EXPECT_EQ(Parsed("-.5e-320"), -.5e-320);
    EXPECT_EQ(Parsed("0012.50e-322"), 12.5e-322);
    EXPECT_EQ(Parsed("4.9406564584124654e-324"), 5e-324);
    EXPECT_EQ(Parsed(ZerosAnd(307, "1")), 1e-308);
    EXPECT_EQ(Parsed(ZerosAnd(400, "1e90")), 1e-311);
    EXPECT_GT(Parsed("1e-320"), 0);
}

TEST(SmallNumbers, AreZeroWithTheirSignBelowTheSmallestDouble) {
    for (const std::string& number :
         {std::string("1e-400"), std::string("1e-99999999999999999999"), ZerosAnd(400, "1")}) {
        EXPECT_EQ(Parsed(number), 0) << number;
        EXPECT_FALSE(std::signbit(Parsed(number))) << number;
        EXPECT_EQ(Parsed("-" + number), 0) << number;
        EXPECT_TRUE(std::signbit(Parsed("-" + number))) << number;
    }
}

TEST(SmallNumbers, AreReadAnywhereInADocument) {
    Json::Value document;
    ASSERT_TRUE(
        Parses("{\"a\":[1e-320,2,[ -1e-320 ,\"1e-320\"]],\"1e-320\":1e-400/* 1e-320 */,\"b\":2.5e-1,"
               "\"c\":1e-320,\"c\":3}",
               document));
    EXPECT_EQ(document["a"][0].asDouble(), 1e-320);
    EXPECT_EQ(document["a"][1].asInt(), 2);
    EXPECT_EQ(document["a"][2][0].asDouble(), -1e-320);
    EXPECT_EQ(document["a"][2][1].asString(), "1e-320");
    EXPECT_EQ(document["1e-320"].asDouble(), 0);
    EXPECT_EQ(document["b"].asDouble(), 0.25);
    EXPECT_EQ(document["c"].asInt(), 3);
    EXPECT_EQ(document["1e-320"].getComment(Json::commentAfterOnSameLine), "/* 1e-320 */");
}

TEST(SmallNumbers, AreReadInTheDeepestArray) {
    Json::Value document;
    ASSERT_TRUE(Parses(std::string(999, '[') + "1e-320" + std::string(999, ']'), document));
    const Json::Value* value = &document;
    while (value->isArray()) value = &(*value)[0];
    EXPECT_EQ(value->asDouble(), 1e-320);
}

TEST(SmallNumbers, MayFillADocument) {
    std::string text = "[1e-320";
    for (int i = 1; i < 99999; ++i) text += i % 2 == 0 ? ",1e-320" : ",1";
    Json::Value document;
    ASSERT_TRUE(Parses(text + "]", document));
    for (Json::ArrayIndex i = 0; i < document.size(); ++i)
        ASSERT_EQ(document[i].asDouble(), i % 2 == 0 ? 1e-320 : 1) << i;
}

TEST(SmallNumbers, AreRefusedIfTheyAreNotJson) {
    for (const char* text : {"1e-320x", "1e-320-", "1e-320.5", "+1e-320", ".1e-320", "0x1p-1070", "1e-320 1", "1e--320",
                             "--1e-320", "1e-320e", "nan"}) {
        Json::Value document;
        EXPECT_FALSE(Parses(std::string("[[") + text + "]", document)) << text;
    }
    EXPECT_EQ(Parsed("1e-320x"), 1e-320);  // what follows a document is ignored
}

TEST(LargeNumbers, AreRefused) {
    for (const char* number : {"1e309", "-1e309", "1e400", "-1e400", "1e99999999999999999999"}) {
        Json::Value document;
        EXPECT_FALSE(Parses(number, document)) << number;
        EXPECT_FALSE(Parses(std::string("[1e-320,") + number + "]", document)) << number;
    }
    EXPECT_EQ(Parsed("1.7976931348623157e308"), 1.7976931348623157e308);
    EXPECT_EQ(Parsed("2.2250738585072014e-308"), 2.2250738585072014e-308);
}

// A random number around the limits of a double.
std::string RandomNumber(std::mt19937& random) {
    std::string text = random() % 2 == 0 ? "-" : "";
    for (size_t digits = 1 + random() % 20; digits > 0; --digits) text += static_cast<char>('0' + random() % 10);
    if (random() % 2 == 0) text += "." + std::to_string(random());
    const unsigned exponent = random() % 2 == 0 ? 290 + random() % 50 : random() % 400;
    return text + (random() % 2 == 0 ? "e" : "E") + (random() % 4 == 0 ? "" : "-") + std::to_string(exponent);
}

TEST(Numbers, AreReadAsTheCLibraryReadsThem) {
    std::mt19937 random(1);
    int small = 0;
    for (int round = 0; round < 20000; ++round) {
        const std::string number = RandomNumber(random);
        const double expected = std::strtod(number.c_str(), nullptr);
        Json::Value document;
        ASSERT_EQ(Parses(number, document), std::isfinite(expected)) << number;
        if (!std::isfinite(expected)) continue;
        ASSERT_EQ(document.asDouble(), expected) << number;
        ASSERT_EQ(std::signbit(document.asDouble()), std::signbit(expected)) << number;
        small += std::fpclassify(expected) == FP_SUBNORMAL;
    }
    EXPECT_GT(small, 500);
}

}  // namespace
