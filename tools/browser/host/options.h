// The command line of hbbtv-browser.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "chromium/pages.h"
#include "common/duration.h"

namespace hbbtv::browser {

struct Options {
    std::string page;                                        // URL or file; empty: pages come from the platform only
    std::vector<std::pair<std::string, std::string>> serve;  // beginning of URLs, and directory
    std::string screenshot;
    std::vector<std::string> keys;
    bool console = false;
    bool alone = false;
    bool headless = false;
    std::string picture;
    std::string remote;
    std::string until;
    std::string print;
    std::string userAgent{
        "Mozilla/5.0 (Linux; Linux x86_64) AppleWebKit/537.36 (KHTML, like Gecko) Chrome/156.0.0.0 Safari/537.36 "
        "HbbTV/1.5.1 (+DRM; Vantorel; Desk; " HBBTV_VERSION "; " HBBTV_VERSION "; Vantorel-Desk;)"};
    ScreenSize size;
    std::string profile;
    Milliseconds limit{30000};
    Milliseconds callLimit{5000};

    // Whether there is a display, and the program stays.
    bool HasWindow() const;

    // Whether the program ends when it has done what it was asked to do with the page.
    bool EndsByItself() const;
};

// Returns the options, or the exit code if the program must not run: help was shown, or the command line is invalid.
std::optional<Options> ReadOptions(int argc, char** argv, int& exitCode);

}  // namespace hbbtv::browser
