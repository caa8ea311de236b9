// hbbtvctl man: manual pages, from the same description as --help.
#include <cctype>
#include <cstdio>

#include "commands/commands.h"
#include "commands/options.h"
#include "failure.h"

namespace hbbtv::ctl {

namespace {

std::string Roff(const std::string& text) {
    std::string escaped;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\')
            escaped += "\\e";
        else if (text[i] == '-')
            escaped += "\\-";
        else if ((text[i] == '.' || text[i] == '\'') && (i == 0 || text[i - 1] == '\n'))
            escaped += std::string("\\&") + text[i];
        else
            escaped += text[i];
    }
    return escaped;
}

std::string Upper(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

std::vector<const CLI::App*> Commands(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

bool Shown(const CLI::Option* option) {
    return !option->get_group().empty();
}

std::string Synopsis(const CLI::App& command, const std::string& name) {
    std::string text = ".B " + Roff(name) + "\n";
    bool options = false;
    for (const CLI::Option* option : command.get_options()) {
        if (!Shown(option) || option->get_positional()) continue;
        options = true;
    }
    if (options) text += "[\\fIOPTION\\fR]...\n";
    for (const CLI::Option* option : command.get_options()) {
        if (!option->get_positional()) continue;
        const std::string word = "\\fI" + Roff(option->get_type_name()) + "\\fR";
        text += (option->get_required() ? word : "[" + word + "]") + "\n";
    }
    if (!Commands(command).empty()) text += "\\fICOMMAND\\fR ...\n";
    return text;
}

std::string Options(const CLI::App& command, bool positional) {
    std::string text;
    for (const CLI::Option* option : command.get_options()) {
        if (!Shown(option) || option->get_positional() != positional) continue;
        std::string head =
            positional ? "\\fI" + Roff(option->get_type_name()) + "\\fR" : "\\fB" + Roff(option->get_name()) + "\\fR";
        if (!positional && option->get_expected_min() > 0) head += " \\fI" + Roff(option->get_type_name()) + "\\fR";
        text += ".TP\n" + head + "\n" + Roff(option->get_description());
        if (!option->get_default_str().empty()) text += " (" + Roff(option->get_default_str()) + " without it)";
        text += "\n";
    }
    return text;
}

std::string Footer(const CLI::App& command) {
    std::string text;
    std::string footer = command.get_footer();
    if (footer.empty()) return "";
    return ".SH NOTES\n.nf\n" + Roff(footer) + "\n.fi\n";
}

std::string Page(const CLI::App& app, const CLI::App& command) {
    const bool whole = &app == &command;
    const std::string name = whole ? "hbbtvctl" : "hbbtvctl " + command.get_name();
    const std::string page = whole ? "hbbtvctl" : "hbbtvctl-" + command.get_name();
    std::string text =
        ".TH " + Upper(Roff(page)) + " 1 \"\" \"hbbtvctl " HBBTV_VERSION "\" \"HbbTV service library\"\n";
    text += ".SH NAME\n" + Roff(page) + " \\- " + Roff(command.get_description()) + "\n";
    text += ".SH SYNOPSIS\n" + Synopsis(command, name);
    const std::string arguments = Options(command, true);
    if (!arguments.empty()) text += ".SH ARGUMENTS\n" + arguments;
    text += ".SH OPTIONS\n" + Options(command, false);
    if (!Commands(command).empty()) text += ".SH COMMANDS\n";
    for (const CLI::App* sub : Commands(command)) {
        text += ".TP\n\\fB" + Roff(sub->get_name()) + "\\fR\n" + Roff(sub->get_description()) +
                "; see \\fBhbbtvctl\\-" + Roff(sub->get_name()) + "\\fR(1)\n";
    }
    return text + Footer(command);
}

int Run(const CLI::App& app, const std::string& wanted) {
    const CLI::App* command = &app;
    for (const CLI::App* sub : Commands(app)) {
        if (sub->get_name() == wanted) command = sub;
    }
    std::printf("%s", Page(app, *command).c_str());
    return kDone;
}

}  // namespace

void AddMan(CLI::App& app, Invocation& invocation) {
    auto wanted = std::make_shared<std::string>();
    CLI::App* command = app.add_subcommand("man", "Print a manual page, for man -l");
    command->add_option("command", *wanted, "The page of one command; without it, of hbbtvctl")
        ->type_name("COMMAND")
        ->check([&app](const std::string& name) {
            for (const CLI::App* known : Commands(app)) {
                if (known->get_name() == name) return std::string();
            }
            return "there is no command \"" + name + "\"";
        });
    command->footer("Example:\n  hbbtvctl man call | man -l -");
    command->callback([wanted, &app, &invocation] { invocation.run = [wanted, &app] { return Run(app, *wanted); }; });
}

}  // namespace hbbtv::ctl
