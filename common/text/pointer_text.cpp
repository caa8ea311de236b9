#include "common/text/pointer_text.h"

#include <cctype>
#include <cinttypes>
#include <cstdio>

namespace hbbtv {

std::string HexText(uint64_t number) {
    char text[24];
    std::snprintf(text, sizeof(text), "0x%" PRIx64, number);
    return text;
}

std::string HandleText(uint64_t handle) {
    char text[24];
    std::snprintf(text, sizeof(text), "0x%08" PRIx64, handle);
    return text;
}

std::string PointerText(uint64_t pointer) {
    return pointer == 0 ? "" : HexText(pointer);
}

std::optional<uint64_t> ParsePointer(const std::string& text) {
    size_t at = 0;
    while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at]))) ++at;
    if (at == text.size() || text.compare(at, 5, "(nil)") == 0) return 0;
    if (text[at] == '0' && at + 1 < text.size() && (text[at + 1] == 'x' || text[at + 1] == 'X')) at += 2;
    uint64_t value = 0;
    size_t digits = 0;
    for (; at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at])); ++at, ++digits) {
        const int c = std::tolower(static_cast<unsigned char>(text[at]));
        if (value >> 60 != 0) return std::nullopt;
        value = value * 16 + static_cast<uint64_t>(c <= '9' ? c - '0' : c - 'a' + 10);
    }
    if (digits == 0) return std::nullopt;
    return value;
}

}  // namespace hbbtv
