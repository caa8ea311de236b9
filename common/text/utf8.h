// UTF-8 in bytes of unknown origin.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace hbbtv {

// Returns whether the byte continues a character: 10xxxxxx.
bool IsContinuation(char c);

// Returns the length of the character at the start of the string, and sets `code` to its code point. Returns 0 if the
// string does not begin with a valid character. The string must not be empty.
size_t Utf8Length(std::string_view text, uint32_t& code);

// Appends a character. The code point must be at most 0x10ffff.
void AppendUtf8(std::string& text, uint32_t code);

// Returns the bytes without those that are not part of a valid character.
std::string ValidUtf8(std::string_view bytes);

}  // namespace hbbtv
