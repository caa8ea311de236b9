#include "common/text/base64.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace hbbtv {

namespace {

constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

uint32_t ValueOf(char digit) {
    const char* found = digit == '\0' ? nullptr : std::strchr(kDigits, digit);
    if (found == nullptr) throw std::runtime_error("not Base64: a character that it does not have");
    return static_cast<uint32_t>(found - kDigits);
}

}  // namespace

std::string Base64(const std::string& bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t at = 0; at < bytes.size(); at += 3) {
        uint32_t group = 0;
        for (size_t i = 0; i < 3; ++i) {
            group = group << 8 | (at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0);
        }
        for (size_t i = 0; i < 4; ++i) {
            text += at + i > bytes.size() ? '=' : kDigits[group >> (18 - 6 * i) & 63];
        }
    }
    return text;
}

std::string FromBase64(const std::string& text) {
    if (text.size() % 4 != 0) throw std::runtime_error("not Base64: it is cut");
    std::string bytes;
    for (size_t at = 0; at < text.size(); at += 4) {
        const size_t digits = at + 4 < text.size() || text[at + 3] != '=' ? 4 : text[at + 2] != '=' ? 3 : 2;
        uint32_t group = 0;
        for (size_t i = 0; i < 4; ++i) group = group << 6 | (i < digits ? ValueOf(text[at + i]) : 0);
        for (size_t i = 0; i + 1 < digits; ++i) bytes += static_cast<char>(group >> (16 - 8 * i) & 255);
    }
    return bytes;
}

}  // namespace hbbtv
