#include "chromium/base64.h"

#include <cstdint>
#include <cstring>

namespace hbbtv::browser {

namespace {

const char* const kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string Base64(const std::string& bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t at = 0; at < bytes.size(); at += 3) {
        const size_t count = std::min<size_t>(3, bytes.size() - at);
        uint32_t group = 0;
        for (size_t i = 0; i < 3; ++i) group = group << 8 | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0);
        for (size_t i = 0; i < 4; ++i) text += i <= count ? kAlphabet[group >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}

std::string FromBase64(const std::string& text) {
    std::string bytes;
    uint32_t group = 0;
    int bits = 0;
    for (const char c : text) {
        const char* found = c == '\0' ? nullptr : std::strchr(kAlphabet, c);
        if (found == nullptr) continue;
        group = group << 6 | static_cast<uint32_t>(found - kAlphabet);
        bits += 6;
        if (bits < 8) continue;
        bits -= 8;
        bytes += static_cast<char>(group >> bits & 255);
    }
    return bytes;
}

}  // namespace hbbtv::browser
