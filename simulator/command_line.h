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
    std::string programmes;  // a file of them; empty: they are made up
    bool trace = false;
    std::vector<std::string> faults;  // as commands: "stop-answering video_broadcast"
    std::optional<std::string> tell;  // a line for a simulator that already runs
};

// Nothing when there is nothing to run: help or the version was printed, or what is wrong with the options. The program
// ends with the code then.
std::optional<Options> ReadCommandLine(int argc, char** argv, int& exitCode);

}  // namespace hbbtv::sim
