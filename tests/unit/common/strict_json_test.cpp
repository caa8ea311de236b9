// The strict parser of files and messages that people write: numbers.
#include <gtest/gtest.h>

#include "common/text/json.h"

namespace hbbtv::test {
namespace {

std::string Refusal(const std::string& text) {
    try {
        return "accepted as " + WriteJson(ParseJson(text));
    } catch (const BadJson& e) {
        return e.what();
    }
}

TEST(StrictJson, TakesTheNumbersThatJsonHas) {
    for (const char* const number : {"0", "-0", "7", "-10", "0.5", "10.25", "1e3", "1E+3", "-2.5e-3", "0e0"}) {
        EXPECT_NO_THROW(ParseJson(number)) << number;
        EXPECT_NO_THROW(ParseJson(std::string("{\"+1 \\\" 01\": [") + number + ", " + number + " ]}")) << number;
    }
}

TEST(StrictJson, RefusesTheNumbersThatJsonDoesNotHave) {
    for (const char* const number : {"+1", "+0.5", "01", "-01", "00", "1.", "-1.", "0.e1", "1e", "1e+"}) {
        const std::string reason = Refusal(number);
        EXPECT_EQ(reason.rfind("not valid JSON: ", 0), 0u) << number << ": " << reason;
        const std::string nested = Refusal(std::string("{\"a\": [1,") + number + "]}");
        EXPECT_EQ(nested.rfind("not valid JSON: ", 0), 0u) << number << ": " << nested;
    }
}

TEST(StrictJson, NamesTheNumberAndItsPlace) {
    EXPECT_EQ(Refusal("{\n  \"a\": [1, +56]\n}"), "not valid JSON: line 2, column 12: \"+56\" is not a number");
}

TEST(StrictJson, RefusesAValueBelowTheDeepestLevel) {
    const std::string reason = "not valid JSON: line 1, column 1: it nests deeper than 100 levels";
    const std::string open(kDeepestJson, '[');
    const std::string close(kDeepestJson, ']');
    EXPECT_EQ(Refusal(open + close), "accepted as " + open + close);
    for (const char* const value : {"[]", "{}", "1", "\"]\"", "null"})
        EXPECT_EQ(Refusal(open + value + close), reason) << value;
    EXPECT_EQ(Refusal("[" + open), reason);
    EXPECT_EQ(Refusal("{\"a\":" + open), reason);
    // Brackets in strings, and those that are closed, do not count.
    const std::string strings = "[\"" + open + "\\\"[\",[[]],{\"{[\":1},[]]";
    EXPECT_EQ(Refusal(strings), "accepted as " + strings);
}

// jsoncpp's limit, at which it throws.
TEST(StrictJson, TakesADocumentOf1000Levels) {
    const auto levels = [](size_t count) { return std::string(count, '[') + std::string(count, ']'); };
    EXPECT_EQ(WriteJson(ParseJson(levels(1000), 1000)), levels(1000));
    EXPECT_THROW(ParseJson(levels(1001), 1000), BadJson);
}

}  // namespace
}  // namespace hbbtv::test
