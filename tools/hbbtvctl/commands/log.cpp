// hbbtvctl log: sets the lowest priority that the running service logs.
#include <cstdio>
#include <set>
#include <string>

#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "package/debug.h"

namespace hbbtv::ctl {

namespace {

struct LogOptions {
    std::string level;
    TimeOption timeout{"5s"};
};

// Returns what is wrong with the word, or an empty string.
std::string CheckLevel(const std::string& word) {
    const std::set<std::string> levels{"verbose", "debug", "info", "warn", "error", "default"};
    return levels.count(word) > 0 ? "" : "unknown level " + Quoted(word) + DidYouMean(word, levels, levels.size());
}

int Run(const LogOptions& options) {
    const Milliseconds limit = options.timeout.Value();
    const std::string answer = Debug(AnyService(limit), {"--log=" + options.level}, limit);
    if (answer.rfind("log level: ", 0) != 0) throw Failure(kInvalidReply, "the service answers: " + answer);
    std::printf("%s", Printable(answer, LineBreaks::Kept).c_str());
    return kDone;
}

}  // namespace

void AddLog(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<LogOptions>();
    CLI::App* command = app.add_subcommand("log", "Set what the running service logs");
    command->add_option("LEVEL", options->level, "Lowest priority that is logged")
        ->type_name("LEVEL")
        ->required()
        ->check(CheckLevel);
    AddTime(*command, "--timeout", options->timeout, "Maximum time to wait for the service");
    command->footer(
        "With debug, the log has every message of both directions. It is written by the service, not by this command.\n"
        "The level lasts until the service ends, or until the level is set to default.\n\n"
        "Examples:\n"
        "  hbbtvctl log debug\n"
        "  hbbtvctl log default");
    command->callback([options, &invocation] { invocation.run = [options] { return Run(*options); }; });
}

}  // namespace hbbtv::ctl
