// hbbtvctl man: manual pages, generated from the same descriptions as --help.
#include <algorithm>
#include <cctype>
#include <cstdio>

#include "cli/help.h"
#include "cli/options.h"
#include "cli/self_description.h"
#include "common/failure.h"
#include "common/nearest_name.h"
#include "package/description.h"

namespace hbbtv::ctl {

namespace {

std::string Roff(const std::string& text) {
    std::string escaped;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\')
            escaped += "\\e";
        else if (text[i] == '-')
            escaped += "\\-";
        else if (text[i] == '`')
            escaped += "\\(ga";
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

std::string Bold(const std::string& text) {
    return "\\fB" + Roff(text) + "\\fR";
}

std::string Italic(const std::string& text) {
    return "\\fI" + Roff(text) + "\\fR";
}

std::string Synopsis(const CLI::App& command, const std::string& name) {
    std::string text = Bold(name) + "\n[" + Italic("OPTION") + "]...\n";
    for (const CLI::Option* argument : Options(command, true)) {
        const std::string word = Italic(ArgumentName(*argument));
        text += (argument->get_required() ? word : "[" + word + "]") + "\n";
    }
    if (!Commands(command).empty()) text += Italic("COMMAND") + " ...\n";
    return text;
}

std::string Entry(const std::string& head, const std::string& text) {
    return ".TP\n" + head + "\n" + Roff(text) + ".\n";
}

std::string OptionEntries(const CLI::App& command) {
    std::string text;
    for (const CLI::Option* option : Options(command, false)) {
        const std::string value = option->get_type_size() == 0 ? "" : " " + Italic(option->get_type_name());
        text += Entry(Bold(option->get_name(false, true)) + value, Purpose(*option));
    }
    return text;
}

std::string CommandEntries(const CLI::App& app) {
    std::string text;
    for (const CLI::App* command : Commands(app)) text += Entry(Bold(command->get_name()), command->get_description());
    return text;
}

std::string SeeAlso(const CLI::App& app, const CLI::App& command) {
    std::string text = ".SH SEE ALSO\n";
    if (&app != &command) return text + Bold("hbbtvctl") + "(1)\n";
    const auto commands = Commands(app);
    for (const CLI::App* other : commands) {
        text += Bold("hbbtvctl-" + other->get_name()) + "(1)" + (other == commands.back() ? "\n" : ",\n");
    }
    return text;
}

std::string Footer(const CLI::App& command) {
    std::string text;
    for (const FooterPart& part : FooterParts(command)) {
        const std::string heading = part.heading.empty()           ? "NOTES"
                                    : part.heading == "Exit codes" ? "EXIT STATUS"
                                                                   : Upper(part.heading);
        text += ".SH " + heading + "\n.nf\n" + Roff(part.text) + ".fi\n";
    }
    return text;
}

std::string Page(const CLI::App& app, const CLI::App& command) {
    const bool whole = &app == &command;
    const std::string name = whole ? "hbbtvctl" : "hbbtvctl " + command.get_name();
    const std::string page = whole ? "hbbtvctl" : "hbbtvctl-" + command.get_name();
    std::string text = ".TH " + Upper(page) + " 1 \"\" \"hbbtvctl " HBBTV_VERSION "\" \"HbbTV service library\"\n";
    text += ".SH NAME\n" + Roff(page) + " \\- " + Roff(command.get_description()) + "\n";
    text += ".SH SYNOPSIS\n" + Synopsis(command, name);
    const auto arguments = Options(command, true);
    if (!arguments.empty()) text += ".SH ARGUMENTS\n";
    for (const CLI::Option* argument : arguments) text += Entry(Italic(ArgumentName(*argument)), Purpose(*argument));
    text += ".SH OPTIONS\n" + OptionEntries(command);
    if (whole) text += ".SH COMMANDS\n" + CommandEntries(app);
    return text + Footer(command) + SeeAlso(app, command);
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
    command->add_option("COMMAND", *wanted, "Command to print the page of (default: hbbtvctl itself)")
        ->type_name("COMMAND")
        ->check([&app](const std::string& name) {
            std::set<std::string> known;
            for (const CLI::App* other : Commands(app)) known.insert(other->get_name());
            return known.count(name) != 0 ? ""
                                          : "unknown command \"" + name + "\"" + DidYouMean(name, known, kShortList);
        });
    command->footer("Examples:\n  hbbtvctl man call | man -l -\n  hbbtvctl man > hbbtvctl.1");
    command->callback([wanted, &app, &invocation] { invocation.run = [wanted, &app] { return Run(app, *wanted); }; });
}

}  // namespace hbbtv::ctl
