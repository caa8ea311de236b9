#include "lenient_readings.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace hbbtv::test {

namespace {

struct TypeReadings {
    const char* type;
    const char* none;                 // what a value gives that is not one of the type
    std::vector<const char*> others;  // such values; "" is a missing member
    std::vector<const char*> same;    // values that are read as they are written
    std::vector<Reading> read;
};

const TypeReadings kReadings[] = {
    {"int",
     "0",
     {"", "null", "false", "2147483648", "-2147483649", "4294967297", "18446744073709551617", "2147483647.5", "1e300",
      "1e-320", R"("7")", R"("text")", "[7]", "[]", R"({"a": 7})", "{}"},
     {"7", "-7", "2147483647", "-2147483648"},
     {{"true", "1"}, {"2.5", "2"}, {"-2.5", "-2"}}},
    {"flag",
     "false",
     {"", "null", "false", "0", "2147483648", "4294967297", "0.5", "1e300", R"("1")", R"("true")", "[1]",
      R"({"a": 1})"},
     {"true"},
     {{"1", "true"}, {"7", "true"}, {"-7", "true"}, {"2147483647", "true"}, {"-2147483648", "true"}, {"2.5", "true"}}},
    {"uint",
     "0",
     {"", "null", "false", "-1", "-7", "4294967296", "18446744073709551617", "-0.5", "1e300", R"("7")", R"("text")",
      "[7]", "[]", R"({"a": 7})", "{}"},
     {"7", "4294967295"},
     {{"true", "1"}, {"2.5", "2"}}},
    {"int64",
     "0",
     {"", "null", "false", "9223372036854775808", "-9223372036854777857", "9.3e18", "-9.3e18", "1e300", R"("7")", "[7]",
      R"({"a": 7})"},
     {"7", "-7", "4294967296", "9223372036854775807", "-9223372036854775808"},
     {{"true", "1"}, {"2.5", "2"}, {"-2.5", "-2"}, {"9.2e18", "9200000000000000000"}}},
    {"uint64",
     "0",
     {"", "null", "false", "-7", "18446744073709551616", "-0.5", "1e300", R"("7")", R"("text")", "[7]", R"({"a": 7})"},
     {"7", "4294967296", "18446744073709551615"},
     {{"true", "1"}, {"2.5", "2"}, {"1e19", "10000000000000000000"}}},
    {"bool",
     "false",
     {"", "null", "false", "0", "0.0", R"("true")", R"("text")", "[true]", R"({"a": true})"},
     {"true"},
     {{"7", "true"}, {"-7", "true"}, {"18446744073709551617", "true"}, {"2.5", "true"}, {"1e300", "true"}}},
    {"double",
     "0",
     {"", "null", "false", R"("2.5")", R"("text")", "[2.5]", R"({"a": 2.5})"},
     {"7", "-7", "4294967296", "2.5", "-0.125"},
     {{"true", "1"},
      {"1e300", "1.0000000000000001e+300"},
      {"1e-320", "9.9998886718268301e-321"},
      {"-1e-320", "-9.9998886718268301e-321"},
      {"1e-400", "0"},
      {"-1e-400", "-0"}}},
    {"string",
     R"("")",
     {"", "null", R"(["text"])", R"({"a": "text"})"},
     {R"("text")", R"("")"},
     {{"true", R"("true")"},
      {"false", R"("false")"},
      {"7", R"("7")"},
      {"-7", R"("-7")"},
      {"4294967296", R"("4294967296")"},
      {"2.5", R"("2.5")"},
      {R"("a\u0000b")", R"("a\0b")"}}},
    {"pointer",
     nullptr,
     {"", "null", "true", "false", "7", "-7", "4294967296", "1e300", "2.5", R"(["0x7"])", R"({"a": "0x7"})"},
     {},
     {{R"("0x7")", "0x7"}, {R"("0xffffffff")", "0xffffffff"}, {R"("0xFEDC0001")", "0xfedc0001"}}},
};

}  // namespace

std::vector<Reading> ReadingsOf(const std::string& type, const char* unchanged) {
    const auto found =
        std::find_if(std::begin(kReadings), std::end(kReadings), [&](const auto& one) { return one.type == type; });
    if (found == std::end(kReadings)) {
        std::fprintf(stderr, "no type: %s\n", type.c_str());
        std::abort();
    }
    std::vector<Reading> readings = found->read;
    for (const char* json : found->others) readings.push_back({json, found->none});
    for (const char* json : found->same) readings.push_back({json, json});
    if (type == "pointer") {
        for (const char* json : {R"("")", R"("text")", R"("\u00000x7")"}) readings.push_back({json, unchanged});
    }
    return readings;
}

std::string Show(double value) {
    char text[64];
    std::snprintf(text, sizeof(text), "%.17g", value);
    return text;
}

std::string Show(const void* value) {
    char text[64];
    std::snprintf(text, sizeof(text), "0x%lx", static_cast<unsigned long>(reinterpret_cast<uintptr_t>(value)));
    return text;
}

std::string Show(const std::string& value) {
    std::string text = "\"";
    for (const char c : value) text += c == '\0' ? std::string("\\0") : std::string(1, c);
    return text + "\"";
}

}  // namespace hbbtv::test
