// The options of hbbtv-sim.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "families/settings.h"

namespace hbbtv::sim {

// Fixed, documented in docs/simulator.md.
enum ExitCode { kEnded = 0, kTellFailed = 1, kUsage = 2, kFileRefused = 3, kCannotServe = 4, kCannotKeep = 5 };

struct Options {
    Settings settings;
    std::string directory;
    std::string lineUp;      // empty: the built-in one
    std::string programmes;  // a file of them; empty: they are made up
    bool trace = false;
    std::vector<std::string> faults;  // as commands: "stop-answering video_broadcast"
    std::optional<std::string> tell;  // a line for a simulator that already runs
};

// Nothing to run: help or version was asked for, or the options make no sense, and it was printed. The program ends
// with the code.
struct EndNow {
    int exitCode;
};

// Throws EndNow.
Options ReadCommandLine(int argc, char** argv);

}  // namespace hbbtv::sim
