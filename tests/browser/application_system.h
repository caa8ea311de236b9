// The system, and a browser whose application of arte HD is the file "index.html".
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "system.h"

namespace hbbtv::test {

class ApplicationSystem : public BrowserSystem {
  public:
    explicit ApplicationSystem(const std::string& application, const std::vector<std::string>& options = {"--trace"})
        : BrowserSystem(options) {
        std::filesystem::create_directory(directory / "arte");
        std::filesystem::create_directory(directory / "zdf");
        Write("arte/index.html", "<!DOCTYPE html><title>arte</title><body>" + application);
        Write("zdf/index.html", "<!DOCTYPE html><title>ZDF</title><body>ZDF");
    }

    std::vector<std::string> Command() const {
        return {HBBTV_BROWSER_PROGRAM,
                "--headless",
                "--serve",
                "http://arte.example/hbbtv/=" + directory.Path() + "/arte",
                "--serve",
                "http://zdf.example/hbbtv/=" + directory.Path() + "/zdf"};
    }

    // Tunes to arte HD and waits until its application has loaded.
    static bool OpenArte() {
        Tell("zap 3");
        return ShowsTab("arte Start (14.1), loaded");
    }

    static bool ShowsTab(const std::string& text) {
        return WaitFor([&] { return Tell("tabs").find(text) != std::string::npos; });
    }

    static bool HasNoTab() {
        return WaitFor([&] { return Tell("tabs").find("; tab ") == std::string::npos; });
    }

    // The process that renders the first tab.
    static pid_t RenderProcess() {
        const std::string tabs = Tell("tabs");
        const std::string before = "render process ";
        const size_t at = tabs.find(before);
        return at == std::string::npos ? 0 : std::atoi(tabs.c_str() + at + before.size());
    }

    // Chromium's first process.
    pid_t Chromium() const {
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            std::ifstream file(entry.path() / "cmdline");
            std::string line;
            std::getline(file, line, '\x01');  // which takes a process that has just ended for an empty one
            if (line.rfind("/usr/lib/chromium/chromium", 0) == 0 && line.find(directory.Path()) != std::string::npos &&
                line.find("--type=") == std::string::npos)
                return std::atoi(entry.path().filename().c_str());
        }
        return 0;
    }
};

}  // namespace hbbtv::test
