// hbbtvctl doctor: checks for the usual problems of a setup.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>

#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/local_socket.h"
#include "common/process.h"
#include "common/text/json.h"
#include "common/text/printable.h"
#include "service/relay_check.h"
#include "service/service.h"
#include "terminal/style.h"
#include "wire/endpoint.h"

namespace hbbtv::ctl {

namespace {

constexpr unsigned kEveryoneMayConnect = 0222;

struct DoctorOptions {
    bool json = false;
    TimeOption timeout{"5s"};
};

Check CheckDirectory(const std::string& directory) {
    struct stat status {};
    const char* name = "directory";
    if (stat(directory.c_str(), &status) != 0) {
        return {name, Check::Level::Problem, directory + ": " + std::strerror(errno),
                "create it, or set TMPDIR (or --directory) to the directory that service and platform use"};
    }
    if (!S_ISDIR(status.st_mode)) {
        return {name, Check::Level::Problem, directory + " is not a directory", "set TMPDIR to a directory"};
    }
    if (access(directory.c_str(), W_OK | X_OK) != 0) {
        return {name, Check::Level::Problem, directory + " is not writable by this user",
                "change its mode, or use another TMPDIR"};
    }
    return Good(name, directory + " is writable");
}

// In a directory that others may write, the sticky bit keeps them from replacing files that are not theirs.
Check CheckSharing(const std::string& directory) {
    struct stat status {};
    const bool found = stat(directory.c_str(), &status) == 0;
    if (!found || (status.st_mode & (S_IWGRP | S_IWOTH)) == 0 || (status.st_mode & S_ISVTX) != 0) {
        return Good("sharing", "other users cannot replace the sockets");
    }
    char mode[16];
    std::snprintf(mode, sizeof(mode), "%03o", status.st_mode & 07777);
    return {"sharing", Check::Level::Warning, directory + " has mode " + mode + ": other users can replace the sockets",
            "set the sticky bit: chmod +t"};
}

// The files of the library's sockets: those for events, and its own ends of connections to the platform.
Checks CheckOwners(const std::string& directory) {
    Checks checks;
    for (const Endpoint& endpoint : AllEndpoints()) {
        const std::string end = endpoint.ofPlatform ? "_port_" + std::to_string(endpoint.port) : "";
        struct stat status {};
        if (lstat((PathOf(directory, endpoint) + end).c_str(), &status) != 0 || status.st_uid == geteuid()) continue;
        checks.push_back({"owner", Check::Level::Warning,
                          endpoint.socket + end + " belongs to user " + std::to_string(status.st_uid) + ", not to " +
                              std::to_string(geteuid()),
                          "if the service does not run as that user, remove the file and restart the service"});
    }
    return checks;
}

Check CheckPathLength(const std::string& directory) {
    const std::string longest = LongestFileName();
    const size_t length = directory.size() + 1 + longest.size();
    const std::string finding = "the longest socket path has " + std::to_string(length) + " of " +
                                std::to_string(kLongestSocketPath) + " bytes";
    if (length <= kLongestSocketPath) return Good("path length", finding);
    return {"path length", Check::Level::Problem, finding + " (" + longest + ")",
            "use a directory of at most " + std::to_string(kLongestSocketPath - 1 - longest.size()) + " bytes"};
}

std::string Advice(Finding::State state) {
    switch (state) {
        case Finding::State::Missing:
            return "start the platform (or hbbtv-sim) with the same TMPDIR";
        case Finding::State::Stale:
            return "its process has ended; restart the platform, which replaces the file";
        case Finding::State::Forbidden:
            return "set the mode of the socket to 777, and make its directory searchable";
        case Finding::State::NoSocket:
            return "remove or rename the file, and restart the other side";
        default:
            return "check the log of the other side";
    }
}

// Returns one line per state of the sockets.
Checks CheckPlatform(const std::string& directory) {
    std::map<Finding::State, std::vector<std::string>> byState;
    std::set<std::string> peers;
    std::set<pid_t> stopped;
    std::vector<std::string> full;
    size_t all = 0;
    for (const Endpoint& endpoint : AllEndpoints()) {
        if (!endpoint.ofPlatform) continue;
        const Finding finding = LookAt(PathOfOwner(PathOf(directory, endpoint)));
        byState[finding.state].push_back(endpoint.socket);
        if (finding.state == Finding::State::Serving) peers.insert(finding.peer);
        if (finding.full) full.push_back(endpoint.socket);
        if (finding.process != 0 && IsStopped(finding.process)) stopped.insert(finding.process);
        ++all;
    }
    Checks checks;
    for (const pid_t process : stopped) {
        checks.push_back({"platform", Check::Level::Problem, DescribeProcess(process) + " is stopped",
                          "continue it: kill -CONT " + std::to_string(process), kTimeout});
    }
    if (!full.empty()) {
        checks.push_back({"platform", Check::Level::Problem, "no connections are accepted by " + Joined(full),
                          "its process hangs; restart the platform", kTimeout});
    }
    for (const auto& [state, sockets] : byState) {
        const std::string count = std::to_string(sockets.size()) + " of " + std::to_string(all) + " sockets ";
        Finding finding;
        finding.state = state;
        if (state == Finding::State::Serving) {
            checks.push_back(Good("platform", count + "are served by " + Joined({peers.begin(), peers.end()})));
            continue;
        }
        const std::string words = finding.state == Finding::State::NoSocket ? "not sockets" : finding.InWords();
        const std::string which = sockets.size() == all ? "" : ": " + Joined(sockets);
        checks.push_back({"platform", Check::Level::Problem, count + "are " + words + which, Advice(state)});
    }
    return checks;
}

// The library creates a socket when a client first uses the family, so a missing one is not a problem.
Checks CheckLibrary(const std::string& directory) {
    Checks checks;
    size_t serving = 0;
    size_t all = 0;
    for (const Endpoint& endpoint : AllEndpoints()) {
        if (endpoint.ofPlatform) continue;
        const Finding finding = LookAt(PathOfOwner(PathOf(directory, endpoint)));
        ++all;
        if (finding.state == Finding::State::Serving) ++serving;
        if (finding.state == Finding::State::Serving || finding.state == Finding::State::Missing) continue;
        const bool stale = finding.state == Finding::State::Stale;
        checks.push_back(
            {"library", stale ? Check::Level::Warning : Check::Level::Problem,
             endpoint.socket + " is " +
                 (finding.state == Finding::State::NoSocket ? "not a socket" : finding.InWords()),
             stale ? "left by a process that has ended; the service replaces it when a client first uses the family"
                   : Advice(finding.state)});
    }
    checks.insert(checks.begin(),
                  Good("library", std::to_string(serving) + " of " + std::to_string(all) +
                                      " event sockets are open; each opens when a client first uses its family"));
    return checks;
}

Checks CheckRights(const std::string& directory) {
    Checks checks;
    for (const Endpoint& endpoint : AllEndpoints()) {
        const Finding finding = LookAt(PathOfOwner(PathOf(directory, endpoint)));
        if (finding.state != Finding::State::Serving || (finding.mode & kEveryoneMayConnect) == kEveryoneMayConnect) {
            continue;
        }
        char mode[16];
        std::snprintf(mode, sizeof(mode), "%03o", finding.mode);
        checks.push_back({"rights", Check::Level::Warning, endpoint.socket + " has mode " + mode,
                          "processes of other users cannot connect; set its mode to 777"});
    }
    if (checks.empty()) checks.push_back(Good("rights", "every user can connect to the existing sockets"));
    return checks;
}

void PrintForPeople(const Checks& checks) {
    for (const Check& check : checks) {
        const std::string level = check.level == Check::Level::Good      ? Green("ok     ")
                                  : check.level == Check::Level::Warning ? Yellow("warning")
                                                                         : Red("PROBLEM");
        const std::string advice = check.advice.empty() ? "" : "; " + check.advice;
        std::printf("%s  %-11s  %s%s\n", level.c_str(), check.name.c_str(), Printable(check.finding).c_str(),
                    Printable(advice).c_str());
    }
}

void PrintForPrograms(const Checks& checks) {
    Json::Value document(Json::objectValue);
    Json::Value& list = document["checks"] = Json::Value(Json::arrayValue);
    for (const Check& check : checks) {
        Json::Value entry(Json::objectValue);
        entry["check"] = check.name;
        entry["level"] = check.level == Check::Level::Good      ? "ok"
                         : check.level == Check::Level::Warning ? "warning"
                                                                : "problem";
        entry["finding"] = check.finding;
        entry["advice"] = check.advice;
        list.append(entry);
    }
    std::printf("%s\n", WriteJson(document).c_str());
}

int Run(const std::string& directory, const DoctorOptions& options) {
    Checks checks{CheckDirectory(directory), CheckPathLength(directory)};
    const auto add = [&checks](const Checks& more) { checks.insert(checks.end(), more.begin(), more.end()); };
    // Sockets whose paths are too long cannot be checked, and a shorter directory changes the rest as well.
    if (checks.back().level == Check::Level::Good) {
        add(CheckRelay(directory));
        add(CheckPlatform(directory));
        add(CheckLibrary(directory));
        add(CheckRights(directory));
        checks.push_back(CheckSharing(directory));
        add(CheckOwners(directory));
    }
    add(CheckService(options.timeout.Value()));
    if (options.json) {
        PrintForPrograms(checks);
    } else {
        PrintForPeople(checks);
    }
    for (const Check& check : checks) {
        if (check.level == Check::Level::Problem) return check.code;
    }
    return kDone;
}

}  // namespace

void AddDoctor(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<DoctorOptions>();
    CLI::App* command = app.add_subcommand("doctor", "Diagnose problems of the service and the platform");
    AddJson(*command, options->json);
    AddTime(*command, "--timeout", options->timeout, "Maximum time to wait for the service");
    command->footer(
        "Prints one line per check: the finding and, if there is a problem, what to do. Restores the sockets that a\n"
        "killed `hbbtvctl monitor` has left.\n\n"
        "Exit codes:\n"
        "  0  no problems; there may be warnings\n"
        "  3  something is missing or unreachable\n"
        "  4  the service, the platform or a client hangs\n"
        "  5  incompatible versions\n"
        "The first problem determines the exit code.\n\n"
        "Examples:\n"
        "  hbbtvctl doctor\n"
        "  hbbtvctl doctor --json");
    command->callback([options, &invocation] {
        invocation.run = [options, &invocation] { return Run(invocation.directory, *options); };
    });
}

}  // namespace hbbtv::ctl
