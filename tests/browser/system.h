// hbbtv-browser with the system that it needs: a platform and a service, as processes.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IMtm.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "../e2e/system.h"
#include "finished_run.h"
#include "scratch_directory.h"

namespace hbbtv::test {

// Returns the names of the files that Chromium has in the directory while it runs.
inline std::vector<std::string> FilesOfChromium(const std::string& directory) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind("hbbtv-chromium", 0) == 0) names.push_back(name);
    }
    return names;
}

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
