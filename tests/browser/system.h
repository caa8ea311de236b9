// hbbtv-browser with the system that it needs: a platform and a service, as processes.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IMtm.h>

#include <fstream>
#include <string>
#include <vector>

#include "../e2e/system.h"
#include "finished_run.h"
#include "scratch_directory.h"

namespace hbbtv::test {

// Platform and service in a directory of their own.
class BrowserSystem {
  public:
    explicit BrowserSystem(const std::vector<std::string>& options = {})
        : platform(options), ready(platform.Ready() && Find<vantorel::hardware::hbbtv::V1_0::IMtm>() != nullptr) {}

    // Writes a file next to the sockets, and returns its path.
    std::string Write(const std::string& name, const std::string& text) const {
        const std::string path = directory / name;
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    // Runs the browser to its end.
    static FinishedRun Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), HBBTV_BROWSER_PROGRAM);
        return RunToEnd(arguments);
    }

    // Returns the platform's answer to a command of the television.
    static std::string Tell(const std::string& command) {
        return RunToEnd({HBBTV_SIM_PROGRAM, "--tell", command}).output;
    }

    const ScratchDirectory directory;
    SimulatedPlatform platform;
    ServiceProcess service;
    const bool ready;
};

}  // namespace hbbtv::test
