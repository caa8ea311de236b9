// The options of hbbtv-sim.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "family/settings.h"

namespace hbbtv::sim {

struct Options {
    Settings settings;
    std::string directory;
    std::string lineUp;      // empty: the built-in one
    std::string programmes;  // an XMLTV file; empty: they are generated
    bool trace = false;
    std::vector<std::string> faults;  // as commands: "stop-answering video_broadcast"
    std::optional<std::string> tell;  // a command for a running simulator
};

// Returns nothing if the program has to end with the code: help, the version or an error message has been printed.
std::optional<Options> ReadCommandLine(int argc, char** argv, int& exitCode);

}  // namespace hbbtv::sim
