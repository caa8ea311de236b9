// Handles of platform objects as strings: on the wire, and for people.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace hbbtv {

// Returns lower-case hexadecimal digits after 0x.
std::string HexText(uint64_t number);

// The same, but the null pointer is the empty string.
std::string PointerText(uint64_t pointer);

// Returns a handle as people read it: 0x and at least eight digits, also for null.
std::string HandleText(uint64_t handle);

// Parses as C's "%p" does: leading whitespace, an optional 0x, digits of either case, then anything. The empty string
// and "(nil)" are the null pointer. Returns nothing if the string is not a pointer.
std::optional<uint64_t> ParsePointer(const std::string& text);

}  // namespace hbbtv
