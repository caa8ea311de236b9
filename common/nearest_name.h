// For messages about a name that nobody knows: the known one that was probably meant.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace hbbtv {

// `; did you mean "number"?` when a known name is near, otherwise `; known are "a", "b"`.
std::string DidYouMean(const std::string& name, const std::set<std::string>& known);

// The same, but empty when no name is near and there are too many to list.
std::string NearestOf(const std::string& name, const std::vector<std::string>& known);

}  // namespace hbbtv
