// Words, numbers and characters in text that comes from outside.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hbbtv::sim {

bool StartsWith(std::string_view text, std::string_view start);

// UTF-8 files may begin with a byte order mark, which says nothing.
std::string_view WithoutByteOrderMark(std::string_view text);

// Without blanks at both ends.
std::string_view Trimmed(std::string_view text);

std::vector<std::string_view> Split(std::string_view text, char separator);

// A number that is the whole word, from 0 to `largest`.
std::optional<uint32_t> ReadNumber(std::string_view word, int base, uint32_t largest);

// As UTF-8 that can be shown: bytes that are no UTF-8 are taken as Latin-1; control characters go, those by which DVB
// marks emphasis among them; blanks at both ends go.
std::string ReadableText(std::string_view raw);

// The start of an UTF-8 text that has room in so many bytes; it does not end within a character.
std::string_view StartOf(std::string_view text, size_t room);

// One line of what came from outside, in quotes, for messages.
std::string Quotation(std::string_view text);

}  // namespace hbbtv::sim
