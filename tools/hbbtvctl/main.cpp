// hbbtvctl: one program for the people who bring a browser and a platform together. The commands are in commands/.
#include <fcntl.h>
#include <unistd.h>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "commands/commands.h"
#include "commands/help.h"
#include "commands/options.h"
#include "common/failure.h"
#include "common/interruption.h"
#include "common/nearest_name.h"
#include "common/text/quote.h"
#include "package/description.h"
#include "wire/endpoint.h"

namespace hbbtv::ctl {

namespace {

const char* const kFooter =
    "`hbbtvctl COMMAND --help` explains a command.\n\n"
    "Exit codes:\n"
    "  0  done\n"
    "  1  the platform's status is not 0\n"
    "  2  the command line makes no sense\n"
    "  3  nobody is there\n"
    "  4  no answer in time\n"
    "  5  an answer that is not understood\n"
    "  6  the other side went away\n"
    "  7  a line of a play did not hold\n"
    "  130  a play was interrupted\n\n"
    "Environment:\n"
    "  TMPDIR         where the sockets are, unless --directory says so; /tmp without it\n"
    "  HIDL_HOST_DIR  where processes find interfaces; hidl-host in the sockets' directory without it\n"
    "  NO_COLOR       no colours, also at a terminal";

void AddCommands(CLI::App& app, Invocation& invocation) {
    for (const auto add : {AddList, AddDescribe, AddCall, AddListen, AddSend, AddEmit, AddPlay, AddBench, AddDoctor,
                           AddCompletion, AddMan}) {
        add(app, invocation);
    }
}

// What the parser says, with the name that was probably meant.
std::string Explained(const CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& words) {
    const CLI::App* command = &app;
    std::set<std::string> known;
    for (const CLI::App* sub : app.get_subcommands({})) known.insert(sub->get_name());
    bool value = false;  // whether the word belongs to the option in front of it
    for (const std::string& word : words) {
        if (word == "--") break;
        if (std::exchange(value, false) || word.empty() || word == "-") continue;
        if (word[0] == '-') {
            const std::string name = word.substr(0, word.find('='));
            if (const CLI::Option* option = command->get_option_no_throw(name)) {
                value = option->get_expected_min() > 0 && name == word;
                continue;
            }
            if (app.get_option_no_throw(name) != nullptr && command != &app) {
                return "the option " + name + " stands in front of the command";
            }
            std::set<std::string> options;
            for (const CLI::Option* option : command->get_options()) {
                if (!option->get_group().empty() && !option->get_positional()) options.insert(option->get_name());
            }
            return "there is no option " + Quoted(name) + DidYouMean(name, options, kShortList);
        }
        if (command != &app) continue;
        if (known.count(word) == 0) {
            return "there is no command " + Quoted(word) + DidYouMean(word, known, kShortList);
        }
        command = app.get_subcommand(word);
    }
    if (value) return words.back() + " needs a value: " + command->get_option(words.back())->get_type_name();
    if (command == &app) return "there is no command to run";
    if (!command->remaining().empty()) {
        return command->get_name() + " has an argument too many, " + Quoted(command->remaining().front());
    }
    return error.what();
}

// The HIDL runtime finds services by it, too.
void UseDirectory(const Invocation& invocation) {
    setenv("TMPDIR", invocation.directory.c_str(), 1);
}

// A standard descriptor that is closed would be the number of the next socket or file, and what is meant for people
// would go there. These fail as the closed one does.
void FillClosedDescriptors() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(fd, F_GETFD) < 0) open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

std::string CheckDirectoryName(const std::string& name) {
    return name.empty() ? "an empty text is no directory" : "";
}

int Main(int argc, char** argv) {
    FillClosedDescriptors();
    std::signal(SIGPIPE, SIG_IGN);
    CLI::App app("Look at, call, listen to and play either side of the HbbTV service library.");
    app.name("hbbtvctl");
    app.set_version_flag("--version", "hbbtvctl " HBBTV_VERSION, "Show the version and end");
    app.footer(kFooter);
    app.require_subcommand(1);
    Invocation invocation{DefaultDirectory(), nullptr};
    app.add_option("--directory", invocation.directory, "Where the sockets are; $TMPDIR, or /tmp")
        ->type_name("DIR")
        ->check(CheckDirectoryName);
    AddCommands(app, invocation);
    SetHelp(app);
    if (argc > 1 && std::string(argv[1]) == "complete") return Complete(app, {argv + std::min(argc, 3), argv + argc});
    const std::vector<std::string> words = SplitJsonOption(app, argc, argv);
    try {
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        const auto asked = app.get_subcommands();
        const std::string help = asked.empty() ? "" : asked[0]->get_name() + " ";
        std::fprintf(stderr, "hbbtvctl: %s\n`hbbtvctl %s--help` shows what there is.\n",
                     Explained(app, e, words).c_str(), help.c_str());
        return kUsage;
    }
    UseDirectory(invocation);
    try {
        return invocation.run();
    } catch (const Failure& e) {
        std::fflush(stdout);
        std::fprintf(stderr, "hbbtvctl: %s\n", e.what());
        return e.Code();
    } catch (const Interrupted&) {
        return kDone;
    }
}

// Output that could not be written is lost to whoever asked for it; a reader that went away wanted no more.
int Flushed(int code) {
    const bool written = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (written || errno == EPIPE || code != kDone) return code;
    std::fprintf(stderr, "hbbtvctl: standard output: %s\n", std::strerror(errno));
    return kUsage;
}

}  // namespace

}  // namespace hbbtv::ctl

int main(int argc, char** argv) {
    const int code = hbbtv::ctl::Flushed(hbbtv::ctl::Main(argc, argv));
    // Not exit(): threads of the HIDL pool may be in a callback, and one that waits for a service that hangs never
    // ends.
    std::_Exit(code);
}
