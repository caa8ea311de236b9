// hbbtvctl: a tool for engineers who integrate a browser and a platform. The commands are in commands/.
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

#include "cli/help.h"
#include "cli/options.h"
#include "cli/self_description.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/interruption.h"
#include "common/nearest_name.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "package/description.h"
#include "wire/endpoint.h"

namespace hbbtv::ctl {

namespace {

const char* const kFooter =
    "`hbbtvctl COMMAND --help` explains a command.\n\n"
    "Exit codes:\n"
    "  0  success\n"
    "  1  the platform returned a status other than 0\n"
    "  2  invalid command line, or output cannot be written\n"
    "  3  no service, no socket, or no client\n"
    "  4  no reply in time\n"
    "  5  invalid reply\n"
    "  6  connection lost\n"
    "  7  a line of a play did not hold, or a replay was not as recorded\n"
    "  130  a play, or a replay as the library, was interrupted\n\n"
    "Environment:\n"
    "  TMPDIR         directory of the sockets, unless --directory is given (default: /tmp)\n"
    "  HIDL_HOST_DIR  directory where interfaces are registered (default: hidl-host in that directory)\n"
    "  NO_COLOR       disables colors";

void AddCommands(CLI::App& app, Invocation& invocation) {
    for (const auto add :
         {AddList, AddDescribe, AddCall, AddListen, AddSend, AddEmit, AddPlay, AddBench, AddMonitor, AddRecord, AddShow,
          AddWeb, AddReplay, AddStatus, AddLog, AddCheck, AddDoctor, AddCompletion, AddMan}) {
        add(app, invocation);
    }
}

// Returns the message for an invalid command line, with a suggestion if a known name is similar.
std::string Explained(const CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& words) {
    const CLI::App* command = &app;
    std::set<std::string> known;
    for (const CLI::App* sub : app.get_subcommands({})) known.insert(sub->get_name());
    bool value = false;  // whether the word is the value of the option before it
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
                return "option " + name + " must precede the command";
            }
            std::set<std::string> options;
            for (const CLI::Option* option : command->get_options()) {
                if (!option->get_group().empty() && !option->get_positional()) options.insert(option->get_name());
            }
            return "unknown option " + Quoted(name) + DidYouMean(name, options, kShortList);
        }
        if (command != &app) continue;
        if (known.count(word) == 0) {
            return "unknown command " + Quoted(word) + DidYouMean(word, known, kShortList);
        }
        command = app.get_subcommand(word);
    }
    if (value)
        return "option " + words.back() + " requires a value: " + command->get_option(words.back())->get_type_name();
    if (command == &app) return "no command given";
    if (!command->remaining().empty()) {
        return command->get_name() + ": unexpected argument " + Quoted(command->remaining().front());
    }
    return error.what();
}

// The HIDL runtime reads it, too.
void UseDirectory(const Invocation& invocation) {
    setenv("TMPDIR", invocation.directory.c_str(), 1);
}

// The next socket or file would get the number of a closed standard descriptor, and receive what is printed. The
// descriptors opened here fail in the same way as closed ones.
void FillClosedDescriptors() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(fd, F_GETFD) < 0) open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

std::string CheckDirectoryName(const std::string& name) {
    return name.empty() ? "the name is empty" : "";
}

int Main(int argc, char** argv) {
    FillClosedDescriptors();
    std::signal(SIGPIPE, SIG_IGN);
    CLI::App app("Inspect the HbbTV service library, call it, and take the place of either side.");
    app.name("hbbtvctl");
    app.set_version_flag("--version", "hbbtvctl " HBBTV_VERSION, "Show the version and exit");
    app.footer(kFooter);
    app.require_subcommand(1);
    Invocation invocation{DefaultDirectory(), nullptr};
    app.add_option("--directory", invocation.directory, "Directory of the sockets (default: $TMPDIR, or /tmp)")
        ->type_name("DIR")
        ->check(CheckDirectoryName);
    AddCommands(app, invocation);
    SetHelp(app);
    if (argc > 1 && std::string(argv[1]) == "complete") return Complete(app, {argv + std::min(argc, 3), argv + argc});
    const std::vector<std::string> words = PreparedWords(app, argc, argv);
    try {
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        const auto asked = app.get_subcommands();
        const std::string help = asked.empty() ? "" : asked[0]->get_name() + " ";
        std::fprintf(stderr, "hbbtvctl: %s\nSee `hbbtvctl %s--help`.\n",
                     Printable(Explained(app, e, words), LineBreaks::Kept).c_str(), help.c_str());
        return kUsage;
    }
    UseDirectory(invocation);
    try {
        return invocation.run();
    } catch (const Failure& e) {
        std::fflush(stdout);
        std::fprintf(stderr, "hbbtvctl: %s\n", Printable(e.what(), LineBreaks::Kept).c_str());
        return e.Code();
    } catch (const Interrupted&) {
        return kDone;
    }
}

// Lost output is an error, except if the reader has closed its end.
int Flushed(int code) {
    const bool written = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (written || errno == EPIPE || code != kDone) return code;
    std::fprintf(stderr, "hbbtvctl: cannot write standard output: %s\n", std::strerror(errno));
    return kUsage;
}

}  // namespace

}  // namespace hbbtv::ctl

int main(int argc, char** argv) {
    const int code = hbbtv::ctl::Flushed(hbbtv::ctl::Main(argc, argv));
    // Not exit(): threads of the HIDL pool may be in a callback, or wait forever for a service that hangs.
    std::_Exit(code);
}
