// hbbtvctl play: runs the plays in files.
#include <hidl/HidlTransportSupport.h>

#include <cstdio>
#include <list>

#include "cli/arguments.h"
#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/interruption.h"
#include "common/text/json.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "play/language/parser.h"
#include "play/player.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

struct PlayOptions {
    std::vector<std::string> files;
    std::vector<std::string> set;
    bool json = false;
    bool verbose = false;
    bool coverage = false;
    bool takeOver = false;
    TimeOption timeout{"10s"};
};

// "NAME=VALUE", where a value that is not JSON is a string.
std::map<std::string, Json::Value> NamesOf(const std::string& directory, const PlayOptions& options) {
    std::map<std::string, Json::Value> names{{"directory", directory}};
    for (const std::string& word : options.set) {
        const size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const bool good = !name.empty() && name.find_first_not_of(
                                               "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                               "0123456789_") == std::string::npos;
        if (equals == std::string::npos || !good) throw Failure(kUsage, "--set " + Quoted(word) + ": write NAME=VALUE");
        const std::string value = word.substr(equals + 1);
        try {
            names[name] = ParseJson(value);
        } catch (const BadJson&) {
            names[name] = value;
        }
    }
    return names;
}

std::vector<Script> ReadScripts(const PlayOptions& options, const std::map<std::string, Json::Value>& names) {
    std::set<std::string> known;
    for (const auto& [name, value] : names) known.insert(name);
    std::vector<Script> scripts;
    for (const std::string& file : options.files) {
        const std::string text = ReadWord(file == "-" ? file : "@" + file);
        scripts.push_back(ParseScript(file == "-" ? "standard input" : file, text, known));
    }
    return scripts;
}

int Run(const std::string& directory, const PlayOptions& options) {
    const std::map<std::string, Json::Value> names = NamesOf(directory, options);
    const std::vector<Script> scripts = ReadScripts(options, names);
    // Callbacks may arrive as long as the process runs, one at a time.
    static Interruption interruption;
    android::hardware::configureRpcThreadpool(1, false);
    static Transcript transcript(options.json      ? Transcript::Mode::Json
                                 : options.verbose ? Transcript::Mode::Steps
                                                   : Transcript::Mode::PrintedLines);
    static Display display;
    static Arrivals arrivals(transcript, display);
    Peers peers({directory, options.timeout.Value(), options.takeOver}, arrivals);
    Coverage coverage;
    int code = kDone;
    for (const Script& script : scripts) {
        try {
            Player({transcript, display, arrivals, peers, coverage, options.timeout.Value()}, names).Run(script);
        } catch (const Failure& e) {
            std::fflush(stdout);
            std::fprintf(stderr, "hbbtvctl: %s\n", Printable(e.what(), LineBreaks::Kept).c_str());
            if (code == kDone) code = e.Code();
            if (e.Code() == kInterrupted) break;
        }
    }
    if (options.coverage) coverage.Print(options.json);
    return code;
}

}  // namespace

void AddPlay(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<PlayOptions>();
    CLI::App* command = app.add_subcommand("play", "Run plays: calls, events and commands with expected results");
    command->add_option("FILE", options->files, "A play; - for standard input")->type_name("FILE")->required();
    AddJson(*command, options->json);
    command->add_flag("--verbose", options->verbose, "Show each step, its outcome and the events as they arrive");
    command->add_flag("--coverage", options->coverage, "At the end, list the methods and events that did not occur");
    command->add_option("--set", options->set, "Give $NAME a value, as in number=2")
        ->type_name("NAME=VALUE")
        ->expected(1)
        ->take_all();
    AddTakeOver(*command, options->takeOver);
    AddTime(*command, "--timeout", options->timeout, "Longest wait for a reply or an event");
    command->footer(
        "A line of a file is a call with its expected results, an expected event, a message of the wire, or a\n"
        "command to the simulated platform; docs/play.md explains them. The first line that fails ends\n"
        "the file.\n\n"
        "Examples:\n"
        "  echo 'IChannelConfig.GetCurrentChannel() -> 0, $channel' | hbbtvctl play --verbose -\n"
        "  hbbtvctl play zap.play --set number=2 --timeout 2s");
    command->callback([options, &invocation] {
        invocation.run = [options, &invocation] { return Run(invocation.directory, *options); };
    });
}

}  // namespace hbbtv::ctl
