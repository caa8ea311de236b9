// Files and values that people write, for the targets of their readers.
#pragma once

#include <string>
#include <vector>

namespace hbbtv::fuzz {

std::vector<std::string> FileSeeds();
std::vector<std::string> ValueSeeds();
std::vector<std::string> TrafficSeeds();

}  // namespace hbbtv::fuzz
