#include "lenient_readings.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace hbbtv::test {

std::vector<Reading> ReadingsOf(const std::string& type, const char* unchanged) {
    if (type == "int") {
        return {
            {"", "0"},
            {"null", "0"},
            {"true", "1"},
            {"false", "0"},
            {"7", "7"},
            {"-7", "-7"},
            {"2147483647", "2147483647"},
            {"2147483648", "0"},
            {"-2147483648", "-2147483648"},
            {"-2147483649", "0"},
            {"4294967297", "0"},
            {"18446744073709551617", "0"},
            {"2.5", "2"},
            {"-2.5", "-2"},
            {"2147483647.5", "0"},
            {"1e300", "0"},
            {"\"7\"", "0"},
            {"\"text\"", "0"},
            {"[7]", "0"},
            {"[]", "0"},
            {"{\"a\": 7}", "0"},
            {"{}", "0"},
        };
    }
    if (type == "flag") {
        return {
            {"", "false"},          {"null", "false"},       {"true", "true"},        {"false", "false"},
            {"1", "true"},          {"0", "false"},          {"7", "true"},           {"-7", "true"},
            {"2147483647", "true"}, {"2147483648", "false"}, {"-2147483648", "true"}, {"4294967297", "false"},
            {"2.5", "true"},        {"0.5", "false"},        {"1e300", "false"},      {"\"1\"", "false"},
            {"\"true\"", "false"},  {"[1]", "false"},        {"{\"a\": 1}", "false"},
        };
    }
    if (type == "uint") {
        return {
            {"", "0"},           {"null", "0"},
            {"true", "1"},       {"false", "0"},
            {"7", "7"},          {"-1", "0"},
            {"-7", "0"},         {"4294967295", "4294967295"},
            {"4294967296", "0"}, {"18446744073709551617", "0"},
            {"2.5", "2"},        {"-0.5", "0"},
            {"1e300", "0"},      {"\"7\"", "0"},
            {"\"text\"", "0"},   {"[7]", "0"},
            {"[]", "0"},         {"{\"a\": 7}", "0"},
            {"{}", "0"},
        };
    }
    if (type == "int64") {
        return {
            {"", "0"},
            {"null", "0"},
            {"true", "1"},
            {"false", "0"},
            {"7", "7"},
            {"-7", "-7"},
            {"4294967296", "4294967296"},
            {"9223372036854775807", "9223372036854775807"},
            {"9223372036854775808", "0"},
            {"-9223372036854775808", "-9223372036854775808"},
            {"-9223372036854777857", "0"},
            {"2.5", "2"},
            {"-2.5", "-2"},
            {"9.2e18", "9200000000000000000"},
            {"9.3e18", "0"},
            {"-9.3e18", "0"},
            {"1e300", "0"},
            {"\"7\"", "0"},
            {"[7]", "0"},
            {"{\"a\": 7}", "0"},
        };
    }
    if (type == "uint64") {
        return {
            {"", "0"},
            {"null", "0"},
            {"true", "1"},
            {"false", "0"},
            {"7", "7"},
            {"-7", "0"},
            {"4294967296", "4294967296"},
            {"18446744073709551615", "18446744073709551615"},
            {"18446744073709551616", "0"},
            {"2.5", "2"},
            {"-0.5", "0"},
            {"1e19", "10000000000000000000"},
            {"1e300", "0"},
            {"\"7\"", "0"},
            {"\"text\"", "0"},
            {"[7]", "0"},
            {"{\"a\": 7}", "0"},
        };
    }
    if (type == "bool") {
        return {
            {"", "false"},
            {"null", "false"},
            {"true", "true"},
            {"false", "false"},
            {"0", "false"},
            {"7", "true"},
            {"-7", "true"},
            {"18446744073709551617", "true"},
            {"0.0", "false"},
            {"2.5", "true"},
            {"1e300", "true"},
            {"\"true\"", "false"},
            {"\"text\"", "false"},
            {"[true]", "false"},
            {"{\"a\": true}", "false"},
        };
    }
    if (type == "double") {
        return {
            {"", "0"},
            {"null", "0"},
            {"true", "1"},
            {"false", "0"},
            {"7", "7"},
            {"-7", "-7"},
            {"4294967296", "4294967296"},
            {"2.5", "2.5"},
            {"-0.125", "-0.125"},
            {"1e300", "1.0000000000000001e+300"},
            {"\"2.5\"", "0"},
            {"\"text\"", "0"},
            {"[2.5]", "0"},
            {"{\"a\": 2.5}", "0"},
        };
    }
    if (type == "string") {
        return {
            {"", "\"\""},
            {"null", "\"\""},
            {"true", "\"true\""},
            {"false", "\"false\""},
            {"7", "\"7\""},
            {"-7", "\"-7\""},
            {"4294967296", "\"4294967296\""},
            {"2.5", "\"2.5\""},
            {"\"text\"", "\"text\""},
            {"\"\"", "\"\""},
            {"\"a\\u0000b\"", "\"a\\0b\""},
            {"[\"text\"]", "\"\""},
            {"{\"a\": \"text\"}", "\"\""},
        };
    }
    if (type == "pointer") {
        return {
            {"", nullptr},
            {"null", nullptr},
            {"true", nullptr},
            {"false", nullptr},
            {"7", nullptr},
            {"-7", nullptr},
            {"4294967296", nullptr},
            {"1e300", nullptr},
            {"2.5", nullptr},
            {"[\"0x7\"]", nullptr},
            {"{\"a\": \"0x7\"}", nullptr},
            {"\"0x7\"", "0x7"},
            {"\"0xffffffff\"", "0xffffffff"},
            {"\"0xFEDC0001\"", "0xfedc0001"},
            {"\"\"", unchanged},
            {"\"text\"", unchanged},
            {"\"\\u00000x7\"", unchanged},
        };
    }
    std::fprintf(stderr, "no type: %s\n", type.c_str());
    std::abort();
}

std::string Show(int value) {
    return std::to_string(value);
}

std::string Show(unsigned value) {
    return std::to_string(value);
}

std::string Show(unsigned long value) {
    return std::to_string(value);
}

std::string Show(long value) {
    return std::to_string(value);
}

std::string Show(unsigned long long value) {
    return std::to_string(value);
}

std::string Show(long long value) {
    return std::to_string(value);
}

std::string Show(bool value) {
    return value ? "true" : "false";
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

std::string Show(const std::vector<int>& values) {
    std::string text;
    for (const int value : values) text += (text.empty() ? "" : " ") + Show(value);
    return "[" + text + "]";
}

std::string Show(const std::vector<std::pair<int, int>>& values) {
    std::string text;
    for (const auto& [first, second] : values) text += (text.empty() ? "" : " ") + Show(first) + "/" + Show(second);
    return "[" + text + "]";
}

}  // namespace hbbtv::test
