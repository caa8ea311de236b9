// Limits of a JSON document, checked before it is parsed.
#pragma once

#include <cstddef>
#include <optional>

#include "ipc/tolm_ipc_types.h"

namespace tolm {

class SmallNumbers;

constexpr size_t kMaxJsonBytes = kMaxPayloadBytes;

// The text of a value can be 3 bytes long, and the value takes 160.
constexpr size_t kMaxJsonValues = 100000;

// The limit of nesting: a value is within at most this many arrays and objects. jsoncpp throws on deeper documents.
constexpr size_t kMaxJsonDepth = 1000;

// The longest number. jsoncpp copies a number up to five times; a double has fewer than 800 significant digits.
constexpr size_t kMaxJsonNumberBytes = 64u << 10;

// Returns how many values jsoncpp's reader would create, or nothing if the document exceeds a limit. The text need not
// be valid JSON: the reader stops at the first error, and the number is correct up to there. Also returns nothing for
// what the reader only accepts by mistake, any token instead of a comma after a comment in an object: it would need not
// close its brackets in order. Adds the numbers that are too small for a double to `small`, unless it is null.
// Allocates only for these.
std::optional<size_t> CountJsonValues(const char* begin, const char* end, SmallNumbers* small = nullptr);

}  // namespace tolm
