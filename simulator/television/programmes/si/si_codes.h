// The numbers of EN 300 468 for what is text elsewhere: genres and encodings.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "television/line_up/line_up.h"

namespace hbbtv::sim {

// Both content nibbles (table 28), for a genre by its name in the standard or in everyday English or German.
std::optional<uint8_t> ContentOf(const std::string& genre);

// stream_content_ext and stream_content in one byte as in the descriptor, and component_type (table 26).
struct StreamCode {
    uint8_t content = 0;
    uint8_t type = 0;
};

// Nothing for encodings that the table does not have.
std::optional<StreamCode> StreamCodeOf(const Component& component);

}  // namespace hbbtv::sim
