#include "ipc/src/tolm_json_limits.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstring>

#include "ipc/src/tolm_json_small_numbers.h"

namespace tolm {

namespace {

// The characters that end a number, `true`, `false` or `null`.
constexpr std::array<bool, 256> Delimiters() {
    std::array<bool, 256> delimiters{};
    for (const char c : {' ', '\t', '\r', '\n', ',', ':', '"', '/', '[', ']', '{', '}'}) {
        delimiters[static_cast<unsigned char>(c)] = true;
    }
    return delimiters;
}

constexpr std::array<bool, 256> kDelimiters = Delimiters();

// The functions below return the end of what begins at `c`, behind its last character.

const char* EndOfWord(const char* c, const char* end) {
    return std::find_if(c + 1, end, [](char next) { return kDelimiters[static_cast<unsigned char>(next)]; });
}

const char* Find(char what, const char* begin, const char* end) {
    const void* found = memchr(begin, what, static_cast<size_t>(end - begin));
    return found != nullptr ? static_cast<const char*>(found) : end;
}

// Not character by character: most of a long document is strings.
const char* EndOfString(const char* c, const char* end) {
    const char* quote = Find('"', ++c, end);
    while (true) {
        const char* backslash = Find('\\', c, quote);
        if (backslash == quote) return quote != end ? quote + 1 : end;
        if (end - backslash < 2) return end;
        c = backslash + 2;
        if (c > quote) quote = Find('"', c, end);
    }
}

bool BeginsComment(const char* c, const char* end) {
    return *c == '/' && end - c > 1 && (c[1] == '/' || c[1] == '*');
}

const char* EndOfComment(const char* c, const char* end) {
    const bool block = c[1] == '*';
    for (c += 2; c != end; ++c) {
        if (!block && (*c == '\n' || *c == '\r')) return c;
        if (block && *c == '*' && c + 1 != end && c[1] == '/') return c + 2;
    }
    return end;
}

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool ClosesAtOnce(const char* array, const char* end) {
    const char* next = std::find_if_not(array + 1, end, IsSpace);
    return next != end && *next == ']';
}

// Returns whether jsoncpp's reader can continue after the bracket that takes it to this depth. In the innermost array,
// the reader reads a value if anything but the closing bracket follows, even a comment or the end of the text; in the
// innermost object, it does so after a member's name.
bool WithinDepth(size_t depth, const char* bracket, const char* end) {
    if (depth < kMaxJsonDepth) return true;
    return depth == kMaxJsonDepth && (*bracket == '{' || ClosesAtOnce(bracket, end));
}

}  // namespace

std::optional<size_t> CountJsonValues(const char* begin, const char* end, SmallNumbers* small) {
    std::bitset<kMaxJsonDepth + 1> isObject;  // by depth
    size_t depth = 0;
    size_t values = 0;
    bool afterValue = false;  // or after a member's name
    bool afterComment = false;
    for (const char* c = begin; c != end;) {
        const char* const token = c;
        if (IsSpace(*c)) {
            ++c;
            continue;
        }
        if (BeginsComment(c, end)) {
            c = EndOfComment(c, end);
            afterComment = true;
            continue;
        }
        if (afterValue && afterComment && *c != ',' && *c != ']' && *c != '}') return std::nullopt;
        afterComment = false;
        if (*c == ']' || *c == '}') {
            if (depth == 0 || isObject[depth] != (*c == '}')) return std::nullopt;
            if (--depth == 0) break;
            ++c;
            afterValue = true;
            continue;
        }
        if (*c == ',' || *c == ':') {
            // The string before a colon is a member's name.
            if (*c++ == ':' && values > 0) --values;
            afterValue = false;
            continue;
        }
        afterValue = *c != '[' && *c != '{';
        if (!afterValue) {
            if (!WithinDepth(++depth, c, end)) return std::nullopt;
            isObject[depth] = *c++ == '{';
        } else if (*c == '"') {
            if (depth == kMaxJsonDepth) return std::nullopt;
            c = EndOfString(c, end);
        } else {
            c = EndOfWord(c, end);
            if (static_cast<size_t>(c - token) > kMaxJsonNumberBytes) return std::nullopt;
            if (small != nullptr) small->Note(begin, token, c);
        }
        if (++values > kMaxJsonValues) return std::nullopt;
        if (depth == 0) break;  // the document ends here; the rest is not read
    }
    return values;
}

}  // namespace tolm
