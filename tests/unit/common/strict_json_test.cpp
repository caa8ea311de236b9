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

}  // namespace
}  // namespace hbbtv::test
