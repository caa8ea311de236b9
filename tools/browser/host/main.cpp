// hbbtv-browser: Debian's Chromium as an HbbTV browser, for the desk.
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "browser.h"
#include "common/failure.h"
#include "common/text/printable.h"
#include "options.h"

namespace hbbtv::browser {

namespace {

constexpr Milliseconds kTimeToFindTheService{10000};

int Main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    setenv("TMPDIR", "/tmp", 0);  // the HIDL runtime reads it, too
    int exitCode = kDone;
    const std::optional<Options> options = ReadOptions(argc, argv, exitCode);
    if (!options) return exitCode;
    // Not destroyed: threads may be in a call or in a callback until the process ends.
    auto* const loop = new devtools::Loop;
    auto* const platform = new Platform(*loop, kTimeToFindTheService);
    try {
        return Browser(*options, *loop, *platform).Run();
    } catch (const Failure& e) {
        std::fflush(stdout);
        std::fprintf(stderr, "hbbtv-browser: %s\n", Printable(e.what(), LineBreaks::Kept).c_str());
        return e.Code();
    }
}

}  // namespace

}  // namespace hbbtv::browser

int main(int argc, char** argv) {
    const int code = hbbtv::browser::Main(argc, argv);
    std::fflush(stdout);
    std::_Exit(code);
}
