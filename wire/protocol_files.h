// The files of protocol/, compiled into the program by embed.py.
#pragma once

#include <vector>

namespace hbbtv {

struct ProtocolFile {
    const char* family;
    const char* json;
};

// Returns all files, sorted by family.
const std::vector<ProtocolFile>& ProtocolFiles();

}  // namespace hbbtv
