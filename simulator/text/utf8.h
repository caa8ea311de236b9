// UTF-8 in bytes that came from outside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace hbbtv::sim {

// Whether it is no first byte of a character.
bool IsContinuation(char c);

// The length of the character at the start, and its code; 0 when the bytes are none.
size_t Utf8Length(std::string_view text, uint32_t& code);

// The bytes without those that belong to no character.
std::string ValidUtf8(std::string_view bytes);

}  // namespace hbbtv::sim
