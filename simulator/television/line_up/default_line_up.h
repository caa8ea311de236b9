// simulator/data/lineup.json, embedded in the program at build time.
#pragma once

namespace hbbtv::sim {

extern const char* const kDefaultLineUp;

}  // namespace hbbtv::sim
