// The descriptors of EN 300 468 that the service information would have for a programme, byte by byte.
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

// What a descriptor has on the wire of this interface; the standard would allow one byte more.
constexpr size_t kLongestDescriptor = 256;

// In the order short event, extended events, components, content, parental rating; without those that would be empty.
std::vector<std::string> DescriptorsOf(const Programme& programme);

}  // namespace hbbtv::sim
