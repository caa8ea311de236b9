// hbbtvctl: one program for the people who bring a browser and a platform together. The commands are in commands/.
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "commands/commands.h"
#include "commands/options.h"
#include "failure.h"
#include "package/description.h"
#include "package/values.h"
#include "wire/endpoint.h"

namespace hbbtv::ctl {

namespace {

const char* const kFooter =
    "`hbbtvctl COMMAND --help` explains a command.\n\n"
    "Exit codes: 0 done; 1 the platform's status is not 0; 2 the command line makes no sense; 3 nobody there;\n"
    "4 no answer in time; 5 an answer that is not understood; 6 the other side went away.";

void AddCommands(CLI::App& app, Invocation& invocation) {
    for (const auto add :
         {AddList, AddDescribe, AddCall, AddListen, AddSend, AddEmit, AddBench, AddDoctor, AddCompletion, AddMan}) {
        add(app, invocation);
    }
}

// What the parser says, with the name that was probably meant.
std::string Explained(const CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& words) {
    const CLI::App* command = &app;
    std::vector<std::string> known;
    for (const CLI::App* sub : app.get_subcommands({})) known.push_back(sub->get_name());
    for (const std::string& word : words) {
        if (word.empty() || word == "-" || word == "--") continue;
        if (word[0] == '-') {
            const std::string name = word.substr(0, word.find('='));
            if (command->get_option_no_throw(name) != nullptr || app.get_option_no_throw(name) != nullptr) continue;
            std::vector<std::string> options;
            for (const CLI::Option* option : command->get_options()) options.push_back(option->get_name());
            const bool number = word.find_first_not_of("-0123456789.xabcdefABCDEF") == std::string::npos;
            return "there is no option " + Quoted(name) + DidYouMean(name, options) +
                   (number ? " (a negative value is written NAME=" + word + ", or behind --)" : "");
        }
        if (command != &app) continue;
        if (std::find(known.begin(), known.end(), word) == known.end()) {
            return "there is no command " + Quoted(word) + DidYouMean(word, known);
        }
        command = app.get_subcommand(word);
    }
    return error.what();
}

// The HIDL runtime finds services by it, too.
void UseDirectory(const Invocation& invocation) {
    setenv("TMPDIR", invocation.directory.c_str(), 1);
}

int Main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    CLI::App app("Look at, call, listen to and play either side of the HbbTV service library.");
    app.name("hbbtvctl");
    app.set_version_flag("--version", "hbbtvctl " HBBTV_VERSION);
    app.footer(kFooter);
    app.require_subcommand(1);
    Invocation invocation{DefaultDirectory(), nullptr};
    app.add_option("--directory", invocation.directory, "Where the sockets are; $TMPDIR, or /tmp")->type_name("DIR");
    AddCommands(app, invocation);
    const std::vector<std::string> words = SplitJsonOption(argc, argv);
    if (!words.empty() && words[0] == "complete")
        return Complete(app, {words.begin() + std::min<size_t>(2, words.size()), words.end()});
    try {
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        std::fprintf(stderr, "hbbtvctl: %s\n`hbbtvctl --help` shows what there is.\n",
                     Explained(app, e, words).c_str());
        return kUsage;
    }
    UseDirectory(invocation);
    try {
        return invocation.run();
    } catch (const Failure& e) {
        std::fprintf(stderr, "hbbtvctl: %s\n", e.what());
        return e.Code();
    }
}

}  // namespace

}  // namespace hbbtv::ctl

int main(int argc, char** argv) {
    const int code = hbbtv::ctl::Main(argc, argv);
    std::fflush(stdout);
    // Not exit(): threads of the HIDL pool may be in a callback, and one that waits for a service that hangs never
    // ends.
    std::_Exit(code);
}
