// hbbtv-bench: measures the library relative to a floor in the same run, and prints a table.

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "instructions.h"
#include "platform.h"
#include "report/measurement.h"
#include "report/table.h"
#include "roles.h"
#include "service_rows.h"
#include "timings.h"

namespace hbbtv::bench {

namespace {

constexpr char kUsage[] =
    "usage: hbbtv-bench [--instructions] [--json] [--help | --version]\n\n"
    "Measures the library against a floor (plain jsoncpp over the same framing) in one run, then the service with "
    "many\n"
    "clients, its memory and its start, and prints a table.\n\n"
    "  --instructions  counts instructions per message under valgrind instead\n"
    "  --json          prints the machine and the rows as JSON\n\n"
    "Ctrl-C prints what has been measured so far.\n"
    "Exit codes: 0 all targets met, 1 measurement failed, 2 usage, 3 target missed, 130 interrupted.\n";

constexpr int kMissed = 3;
constexpr int kInterrupted = 130;

struct Options {
    bool instructions = false;
    bool json = false;
};

std::vector<Row> Measure(const Options& options) {
    if (options.instructions) return Instructions();
    std::vector<Row> rows = Timings();
    for (const Row& row : ServiceRows()) rows.push_back(row);
    return rows;
}

int Main(const Options& options) {
    TakeInterrupts();
    const std::vector<Row> rows = Measure(options);
    if (options.json) {
        PrintJson(rows);
    } else {
        PrintTable(rows);
    }
    if (Interrupted()) return kInterrupted;
    for (const Row& row : rows) {
        if (!row.Met()) return kMissed;
    }
    return 0;
}

// Returns the exit code of the role of a process that the benchmark starts, or -1.
int RunRole(const std::string& role, const char* argument) {
    if (role == kFloorPlatform) return RunFloorPlatform();
    if (role == kLibraryPlatform) return RunLibraryPlatform();
    if (role == kClient && argument != nullptr) return RunClient(std::atoi(argument));
    if (role == kCountedClient) return RunCountedClient();
    if (role == kCountedService) return RunCountedService();
    return -1;
}

}  // namespace

}  // namespace hbbtv::bench

int main(int argc, char** argv) {
    using namespace hbbtv::bench;
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const int role = RunRole(argument, argv[i + 1]);
        if (role >= 0) return role;
        if (argument == "--version") return std::printf("hbbtv-bench %s\n", HBBTV_VERSION), 0;
        if (argument == "--help") return std::fputs(kUsage, stdout), 0;
        options.instructions |= argument == "--instructions";
        options.json |= argument == "--json";
        if (argument != "--instructions" && argument != "--json") {
            std::fprintf(stderr, "hbbtv-bench: unexpected argument \"%s\"\n%s", argv[i], kUsage);
            return 2;
        }
    }
    return Main(options);
}
