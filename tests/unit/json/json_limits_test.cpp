// How many values a JSON document has, and that the count agrees with what jsoncpp's reader creates.
#include <json/json.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "ipc/src/tolm_json_limits.h"
#include "ipc/src/tolm_json_text.h"

namespace {

std::optional<size_t> CountOf(const std::string& text) {
    return tolm::CountJsonValues(text.data(), text.data() + text.size());
}

size_t ValuesIn(const Json::Value& value) {
    size_t count = 1;
    for (const Json::Value& element : value) count += ValuesIn(element);
    return count;
}

bool Parses(const std::string& text) {
    Json::Value document;
    return tolm::ParseJson(std::vector<unsigned char>(text.begin(), text.end()), document);
}

// An array of elements with different keys, `count` values in all.
std::string ArrayOf(size_t count, const std::string& element) {
    std::string text = "[";
    for (size_t i = 1; i < count; ++i) text += (i > 1 ? "," : "") + element;
    return text + "]";
}

std::string ObjectOf(size_t count, const std::string& value) {
    std::string text = "{";
    for (size_t i = 1; i < count; ++i) text += (i > 1 ? ",\"" : "\"") + std::to_string(i) + "\":" + value;
    return text + "}";
}

TEST(CountJsonValues, CountsEveryValueButNoNamesAndNoComments) {
    struct Row {
        const char* text;
        size_t values;
    };
    for (const Row& row : std::vector<Row>{{"", 0},
                                           {" ", 0},
                                           {"1", 1},
                                           {"null", 1},
                                           {"\"a\"", 1},
                                           {"[]", 1},
                                           {"{}", 1},
                                           {"[1,2]", 3},
                                           {"[ 1 , -2.5e10 , true ]", 4},
                                           {"{\"a\":1}", 2},
                                           {"{\"a\" : [] , \"b\":{\"c\":null}}", 4},
                                           {"[\"a\\\"b,c:d\",\"\\\\\"]", 3},
                                           {"[1/*,2,:*/,//[]\n2]", 3},
                                           {"{\"a:b\":\"c:d\"}", 2},
                                           {"{\"\":1,}", 2},
                                           {"{} [1,2,3]", 1},
                                           {"1 [1,2,3]", 1},
                                           {"\"a\" [1,2,3]", 1}}) {
        EXPECT_EQ(CountOf(row.text), row.values) << row.text;
    }
}

TEST(CountJsonValues, AgreesWithTheReaderOnRandomDocuments) {
    const std::vector<std::string> pieces = {"{\"a\":",   "[",    ",",  "]",  "}",      ",\"b\" :", "1",
                                             "\"\\\"x\"", "null", "{}", "[]", "/*,[*/", "//:\n",    " "};
    std::mt19937 random(7);
    int parsed = 0;
    for (int round = 0; round < 200000; ++round) {
        std::string text = round % 2 == 0 ? "[" : "{\"r\":";
        for (size_t count = random() % 12; count > 0; --count) text += pieces[random() % pieces.size()];
        text += round % 2 == 0 ? "]" : "}";
        Json::Value document;
        if (!Json::Reader().parse(text, document) || !CountOf(text)) continue;
        ++parsed;
        // A member that occurs twice is created twice.
        ASSERT_GE(CountOf(text), ValuesIn(document)) << text;
        if (text.find("\"b\"") != text.rfind("\"b\"")) continue;
        ASSERT_EQ(CountOf(text), ValuesIn(document)) << text;
    }
    EXPECT_GT(parsed, 1000);
}

TEST(CountJsonValues, AcceptsExactly100000ValuesOfEveryShape) {
    for (const char* element : {"[]", "{}", "1", "null", "\"\"", "\"\\u00e9\\\"\"", " 1 ", "/**/1//\n"}) {
        EXPECT_EQ(CountOf(ArrayOf(100000, element)), 100000u) << element;
        EXPECT_EQ(CountOf(ObjectOf(100000, element)), 100000u) << element;
        EXPECT_TRUE(Parses(ArrayOf(100000, element))) << element;
        EXPECT_TRUE(Parses(ObjectOf(100000, element))) << element;
        EXPECT_EQ(CountOf(ArrayOf(100001, element)), std::nullopt) << element;
        EXPECT_EQ(CountOf(ObjectOf(100001, element)), std::nullopt) << element;
        EXPECT_FALSE(Parses(ArrayOf(100001, element))) << element;
        EXPECT_FALSE(Parses(ObjectOf(100001, element))) << element;
    }
}

// jsoncpp's reader takes any token after such a comment for a comma. A bracket among them hid what followed it.
TEST(CountJsonValues, RefusesATokenOtherThanACommaAfterACommentInAnObject) {
    for (const char* token : {"]", "[", "{", ":", "\"x\"", "1"}) {
        const std::string text = std::string("{\"a\":1/**/") + token + "\"b\":1}";
        EXPECT_TRUE(Json::Reader().parse(text, *std::make_unique<Json::Value>())) << text;
        EXPECT_EQ(CountOf(text), std::nullopt) << text;
        EXPECT_FALSE(Parses(std::string("{\"a\":1/**/") + token + "\"b\":" + std::string(5000, '['))) << token;
    }
}

TEST(CountJsonValues, IsNotLoweredByColonsAfterTheValues) {
    EXPECT_EQ(CountOf("[" + ArrayOf(100001, "1") + std::string(100000, ':') + "]"), std::nullopt);
}

TEST(CountJsonValues, AcceptsANumberOf64KiBAndRefusesOneByteMore) {
    const std::string number = "1." + std::string((64 << 10) - 2, '0');
    EXPECT_TRUE(Parses("[" + number + "]"));
    EXPECT_FALSE(Parses("[" + number + "0]"));
    EXPECT_TRUE(Parses("[\"" + number + "0\"]"));
}

}  // namespace
