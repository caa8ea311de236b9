#include "common/text/utf8.h"

#include <algorithm>

namespace hbbtv {

bool IsContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xc0) == 0x80;
}

size_t Utf8Length(std::string_view text, uint32_t& code) {
    static constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(text[0]);
    const size_t length = first < 0x80   ? 1
                          : first < 0xc2 ? 0
                          : first < 0xe0 ? 2
                          : first < 0xf0 ? 3
                          : first < 0xf5 ? 4
                                         : 0;
    if (length == 0 || length > text.size()) return 0;
    code = length == 1 ? first : first & (0x7fu >> length);
    for (size_t i = 1; i < length; ++i) {
        if (!IsContinuation(text[i])) return 0;
        code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3fu);
    }
    const bool surrogate = code >= 0xd800 && code < 0xe000;
    return code < kSmallest[length] || code > 0x10ffff || surrogate ? 0 : length;
}

void AppendUtf8(std::string& text, uint32_t code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xc0 | code >> 6);
        text += static_cast<char>(0x80 | (code & 0x3f));
    } else if (code < 0x10000) {
        text += static_cast<char>(0xe0 | code >> 12);
        text += static_cast<char>(0x80 | (code >> 6 & 0x3f));
        text += static_cast<char>(0x80 | (code & 0x3f));
    } else {
        text += static_cast<char>(0xf0 | code >> 18);
        text += static_cast<char>(0x80 | (code >> 12 & 0x3f));
        text += static_cast<char>(0x80 | (code >> 6 & 0x3f));
        text += static_cast<char>(0x80 | (code & 0x3f));
    }
}

std::string ValidUtf8(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        uint32_t code = 0;
        const size_t length = Utf8Length(bytes, code);
        text += bytes.substr(0, length);
        bytes.remove_prefix(std::max<size_t>(length, 1));
    }
    return text;
}

}  // namespace hbbtv
