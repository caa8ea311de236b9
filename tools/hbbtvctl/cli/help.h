// The format of --help, and what it shares with the manual pages.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace hbbtv::ctl {

// Sets the format of all commands. Call it after they have been added.
void SetHelp(CLI::App& app);

// Returns the commands that are not hidden.
std::vector<const CLI::App*> Commands(const CLI::App& app);

// Returns the options that are not hidden, or the positional arguments.
std::vector<const CLI::Option*> Options(const CLI::App& command, bool positional);

// Returns "METHOD" or "FAMILY...".
std::string ArgumentName(const CLI::Option& argument);

// Returns the description of the option with its default.
std::string Purpose(const CLI::Option& option);

// A part of the footer: "Examples:" with the indented lines below it, or lines without a heading.
struct FooterPart {
    std::string heading;  // without the colon
    std::string text;
};
std::vector<FooterPart> FooterParts(const CLI::App& command);

}  // namespace hbbtv::ctl
