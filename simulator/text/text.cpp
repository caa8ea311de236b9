#include "text/text.h"

#include <algorithm>
#include <charconv>

#include "common/text/utf8.h"
#include "core/journal.h"

namespace hbbtv::sim {

namespace {

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

// C0 and C1, and the range of the private use area in which DVB's two-byte tables have their own C1.
bool IsControl(uint32_t code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || (code >= 0xe080 && code < 0xe0a0);
}

}  // namespace

bool StartsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

std::string_view WithoutByteOrderMark(std::string_view text) {
    if (StartsWith(text, kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    return text;
}

std::string_view Trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> words;
    while (true) {
        const size_t end = text.find(separator);
        words.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return words;
        text.remove_prefix(end + 1);
    }
}

std::optional<uint32_t> ReadNumber(std::string_view word, int base, uint32_t largest) {
    uint32_t number = 0;
    const char* const end = word.data() + word.size();
    const auto read = std::from_chars(word.data(), end, number, base);
    if (word.empty() || read.ec != std::errc() || read.ptr != end || number > largest) return std::nullopt;
    return number;
}

std::string ReadableText(std::string_view raw) {
    std::string text;
    while (!raw.empty()) {
        uint32_t code = 0;
        const size_t length = Utf8Length(raw, code);
        if (length == 0) {
            code = static_cast<unsigned char>(raw[0]);
            if (!IsControl(code)) AppendUtf8(text, code);
        } else if (code == '\t') {
            text += ' ';
        } else if (!IsControl(code)) {
            text += raw.substr(0, length);
        }
        raw.remove_prefix(std::max<size_t>(length, 1));
    }
    return std::string(Trimmed(text));
}

std::string_view StartOf(std::string_view text, size_t room) {
    if (text.size() <= room) return text;
    size_t end = room;
    for (int back = 0; back < 3 && end > 0 && IsContinuation(text[end]); ++back) --end;
    return text.substr(0, end);
}

std::string Quotation(std::string_view text) {
    return "\"" + Excerpt(std::string(text)) + "\"";
}

}  // namespace hbbtv::sim
