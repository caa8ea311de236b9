#include "common/text/printable.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "common/text/utf8.h"

namespace hbbtv {

namespace {

std::string Escape(std::string_view bytes) {
    if (bytes == "\n") return "\\n";
    std::string text;
    for (const char c : bytes) {
        char escaped[5];
        std::snprintf(escaped, sizeof(escaped), "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
        text += escaped;
    }
    return text;
}

}  // namespace

std::string Printable(const std::string& text, LineBreaks breaks) {
    std::string printable;
    for (std::string_view rest = text; !rest.empty();) {
        uint32_t code = 0;
        const size_t length = Utf8Length(rest, code);
        const std::string_view bytes = rest.substr(0, std::max<size_t>(length, 1));
        const bool control = length == 0 || code < 0x20 || (code >= 0x7f && code < 0xa0);
        const bool kept = !control || (code == '\n' && breaks == LineBreaks::Kept);
        printable += kept ? std::string(bytes) : Escape(bytes);
        rest.remove_prefix(bytes.size());
    }
    return printable;
}

}  // namespace hbbtv
