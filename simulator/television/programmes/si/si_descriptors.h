// The descriptors of EN 300 468 for a programme, as in service information.
#pragma once

#include <string>
#include <vector>

#include "television/programmes/programme.h"

namespace hbbtv::sim {

constexpr int kShortEvent = 0x4d;
constexpr int kExtendedEvent = 0x4e;
constexpr int kComponent = 0x50;
constexpr int kContent = 0x54;
constexpr int kParentalRating = 0x55;

// The limit on the wire of this interface; the standard allows one byte more.
constexpr size_t kLongestDescriptor = 256;

// Returns short event, extended events, components, content and parental rating, in this order; empty ones are left
// out.
std::vector<std::string> DescriptorsOf(const Programme& programme);

}  // namespace hbbtv::sim
