#include "host_programs.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <thread>

#include "common/text/quote.h"

namespace hbbtv::browser {

namespace {

constexpr int kHeightOfTitle = 40;

}  // namespace

devtools::ChromiumOptions ChromiumFor(const Options& options) {
    devtools::ChromiumOptions chromium;
    chromium.profile = options.profile;
    chromium.arguments = {"--no-startup-window",
                          "--user-agent=" + options.userAgent,
                          "--autoplay-policy=no-user-gesture-required",
                          "--disable-features=BackForwardCache,Translate,HttpsUpgrades",
                          "--disable-popup-blocking",
                          "--disable-renderer-backgrounding",
                          "--disable-background-timer-throttling",
                          "--disable-backgrounding-occluded-windows",
                          "--hide-scrollbars"};
    return chromium;
}

devtools::ChromiumOptions WindowFor(const Options& options) {
    devtools::ChromiumOptions chromium;
    chromium.window = true;
    const ScreenSize& size = options.size;
    chromium.arguments = {"--app=data:text/html,Television",
                          "--window-size=" + std::to_string(size.width + kWidthOfRemote) + "," +
                              std::to_string(size.height + kHeightOfTitle)};
    return chromium;
}

void RunProgram(const std::string& program, const std::string& argument) {
    std::thread([program, argument] {
        pid_t pid = 0;
        char* const words[] = {const_cast<char*>(program.c_str()), const_cast<char*>(argument.c_str()), nullptr};
        if (posix_spawnp(&pid, program.c_str(), nullptr, nullptr, words, environ) == 0) {
            waitpid(pid, nullptr, 0);
        } else {
            std::fprintf(stderr, "hbbtv-browser: cannot run %s\n", Quoted(program).c_str());
        }
    }).detach();
}

}  // namespace hbbtv::browser
