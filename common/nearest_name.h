// Suggestions for messages about unknown names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

namespace hbbtv {

// A list of more names than this does not help at the end of a message.
constexpr size_t kShortList = 20;

// Returns what completes the message about an unknown name: `; did you mean "number"?` if a known name is similar,
// otherwise the known names, `; known are "a", "b"`, or nothing if there are more than `longestList` of them.
std::string DidYouMean(const std::string& name, const std::set<std::string>& known, size_t longestList = SIZE_MAX);

}  // namespace hbbtv
