// Numbers of things in messages.
#pragma once

#include <cstdint>
#include <string>

namespace hbbtv {

// Returns "1 socket" or "2 sockets".
inline std::string Counted(uint64_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace hbbtv
