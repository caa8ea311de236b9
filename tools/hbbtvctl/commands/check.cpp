// hbbtvctl check: compares the answers of a platform with protocol/.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "check/conformance.h"
#include "check/report.h"
#include "cli/options.h"
#include "commands/commands.h"

namespace hbbtv::ctl {

namespace {

struct CheckOptions {
    std::string side;
    std::vector<std::string> families;
    bool changes = false;
    bool json = false;
    std::string junit;
    TimeOption timeout{"5s"};
};

void WriteReport(const std::string& path, const std::string& text) {
    std::ofstream file(path);
    file << text;
    file.close();
    if (!file) throw Failure(kUsage, "cannot write " + path + ": " + std::strerror(errno));
}

int Run(const std::string& directory, const CheckOptions& options) {
    Scope scope;
    for (const std::string& family : options.families) scope.families.insert(FindFamily(family).name);
    scope.changes = options.changes;
    scope.limit = options.timeout.Value();
    const std::deque<Question> questions = CheckPlatform(directory, scope);
    if (!options.junit.empty()) WriteReport(options.junit, ReportAsJunit(questions));
    const std::string report = options.json ? ReportForPrograms(directory, questions) : ReportForPeople(questions);
    std::printf("%s", report.c_str());
    for (const Question& question : questions) {
        if (question.code != kDone) return question.code;
    }
    return kDone;
}

}  // namespace

void AddCheck(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* command = app.add_subcommand("check", "Compare the answers of a platform with the wire protocol");
    command->add_option("SIDE", options->side, "What to check: platform")
        ->type_name("SIDE")
        ->check([](const std::string& side) { return side == "platform" ? "" : "expected \"platform\""; })
        ->required();
    command->add_option("FAMILY", options->families, "Families to report (default: all)")->type_name("FAMILY");
    command->add_flag("--allow-changes", options->changes, "Also send operations that change something");
    AddJson(*command, options->json);
    command->add_option("--junit", options->junit, "Write a report for test tools to this file")->type_name("FILE");
    AddTime(*command, "--timeout", options->timeout, "Maximum time to wait for each reply");
    command->footer(
        "Sends every operation that changes nothing, with handles from earlier answers, and prints what is not as\n"
        "protocol/ defines it. No service is needed.\n\n"
        "Exit codes:\n"
        "  0  all answers are right\n"
        "  3  a family cannot be reached\n"
        "  4  an operation is not answered in time\n"
        "  5  an answer is wrong\n"
        "  6  the platform has closed a connection\n"
        "The first finding determines the exit code.\n\n"
        "Examples:\n"
        "  hbbtvctl check platform\n"
        "  hbbtvctl check platform channel channel_list --json\n"
        "  hbbtvctl check platform --allow-changes --junit report.xml");
    command->callback([options, &invocation] {
        invocation.run = [options, &invocation] { return Run(invocation.directory, *options); };
    });
}

}  // namespace hbbtv::ctl
