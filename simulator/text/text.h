// Words, numbers and characters in untrusted input.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hbbtv::sim {

bool StartsWith(std::string_view text, std::string_view start);

// UTF-8 files may begin with a byte order mark, which has no meaning.
std::string_view WithoutByteOrderMark(std::string_view text);

// Without spaces at both ends.
std::string_view Trimmed(std::string_view text);

std::vector<std::string_view> Split(std::string_view text, char separator);

// Parses the whole word as a number from 0 to `largest`.
std::optional<uint32_t> ReadNumber(std::string_view word, int base, uint32_t largest);

// Returns printable UTF-8: bytes that are not valid UTF-8 are read as Latin-1; control characters, including those with
// which DVB marks emphasis, and spaces at both ends are removed.
std::string ReadableText(std::string_view raw);

// Returns the longest start of a UTF-8 string that fits into that many bytes without splitting a character.
std::string_view StartOf(std::string_view text, size_t room);

// Untrusted input in one line, in quotes, for messages.
std::string Quotation(std::string_view text);

}  // namespace hbbtv::sim
