// hbbtv-soak: load, events and disturbances for the service, for as long as wanted. See run.h.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstring>
#include <string>

#include "board.h"
#include "roles.h"
#include "run.h"
#include "scratch_directory.h"

namespace {

using namespace hbbtv::soak;

constexpr char kDescription[] =
    "Runs the service with clients that call all 18 families and receive events, while a seed selects which client or "
    "platform is killed (SIGKILL) or stopped (SIGSTOP) next. Checks that no call, event or one-way message is lost or "
    "out "
    "of order while the platform runs, and that the service does not use more and more. Prints a table.";

constexpr char kExitCodes[] =
    "Exit codes: 0 all promises kept, 1 the run could not start, 2 wrong usage, 3 a promise broken, 130 interrupted.";

int Soak(int minutes, unsigned seed) {
    const auto start = std::chrono::steady_clock::now();
    const hbbtv::test::ScratchDirectory directory;
    Run run(OpenBoard(), seed);
    run.WarmUp();
    run.Until(start + std::chrono::minutes(minutes));
    const auto duration = std::chrono::steady_clock::now() - start;
    const bool kept = run.Report(std::chrono::duration_cast<std::chrono::seconds>(duration), seed);
    return Interrupted() ? 130 : kept ? 0 : 3;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && strcmp(argv[1], kPlatformRole) == 0) return RunPlatform();
    if (argc == 3 && strcmp(argv[1], kClientRole) == 0) return RunClient(std::stoi(argv[2]));

    CLI::App app(kDescription, "scripts/soak");
    app.footer(kExitCodes);
    int minutes = 1;
    unsigned seed = 1;
    app.add_option("MINUTES", minutes, "how long, with the warm-up of about half a minute (default: 1)")
        ->check(CLI::Range(1, 1440));
    app.add_option("--seed", seed, "selects the disturbances (default: 1)");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    return Soak(minutes, seed);
}
