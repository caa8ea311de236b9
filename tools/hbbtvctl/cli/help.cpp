#include "cli/help.h"

#include <CLI/Formatter.hpp>
#include <memory>
#include <sstream>

namespace hbbtv::ctl {

namespace {

constexpr size_t kNameColumn = 26;

class HelpFormatter : public CLI::Formatter {
  public:
    HelpFormatter() {
        label("Positionals", "Arguments");
        label("SUBCOMMAND", "COMMAND");
        label("OPTIONS", "OPTION...");
        column_width(kNameColumn);
    }

    std::string make_option_name(const CLI::Option* option, bool positional) const override {
        return positional ? option->get_type_name() : option->get_name(false, true);
    }

    std::string make_option_opts(const CLI::Option* option) const override {
        if (option->get_positional()) return option->get_expected_max() > 1 ? "..." : "";
        return option->get_type_size() == 0 ? "" : " " + option->get_type_name();
    }

    std::string make_option_desc(const CLI::Option* option) const override { return Purpose(*option); }

    // Normalizes blank lines: one between parts, none at the end.
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
        std::string text = CLI::Formatter::make_help(app, name, mode);
        for (size_t at = 0; (at = text.find("\n\n\n", at)) != std::string::npos;) text.erase(at, 1);
        while (text.size() > 1 && text.substr(text.size() - 2) == "\n\n") text.pop_back();
        return text;
    }
};

}  // namespace

void SetHelp(CLI::App& app) {
    const auto formatter = std::make_shared<HelpFormatter>();
    app.formatter(formatter);
    app.get_help_ptr()->description("Show this help and exit");
    for (CLI::App* command : app.get_subcommands({})) {
        command->formatter(formatter);
        if (!command->get_group().empty()) command->group("Commands");
        command->get_help_ptr()->description("Show this help and exit");
    }
}

std::vector<const CLI::App*> Commands(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<const CLI::Option*> Options(const CLI::App& command, bool positional) {
    return command.get_options([positional](const CLI::Option* option) {
        return !option->get_group().empty() && option->get_positional() == positional;
    });
}

std::string ArgumentName(const CLI::Option& argument) {
    return argument.get_type_name() + (argument.get_expected_max() > 1 ? "..." : "");
}

std::string Purpose(const CLI::Option& option) {
    const std::string value = option.get_default_str();
    return option.get_description() + (value.empty() ? "" : " (default: " + value + ")");
}

std::vector<FooterPart> FooterParts(const CLI::App& command) {
    std::vector<FooterPart> parts;
    std::istringstream lines(command.get_footer());
    bool begins = true;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty()) {
            begins = true;
            continue;
        }
        const bool heading = begins && line.back() == ':';
        if (begins) parts.push_back({heading ? line.substr(0, line.find_first_of(",:")) : "", ""});
        if (heading && line.find(',') != std::string::npos) parts.back().text = line + "\n";
        if (!heading) parts.back().text += line + "\n";
        begins = false;
    }
    return parts;
}

}  // namespace hbbtv::ctl
