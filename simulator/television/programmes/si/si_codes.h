// The codes of EN 300 468 for genres and encodings.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "television/line_up/line_up.h"

namespace hbbtv::sim {

// Returns both content nibbles (table 28) of a genre by its name in the standard or a common English or German one.
std::optional<uint8_t> ContentOf(const std::string& genre);

// stream_content_ext and stream_content in one byte as in the descriptor, and component_type (table 26).
struct StreamCode {
    uint8_t content = 0;
    uint8_t type = 0;
};

// Returns nothing for encodings that are not in the table.
std::optional<StreamCode> StreamCodeOf(const Component& component);

}  // namespace hbbtv::sim
