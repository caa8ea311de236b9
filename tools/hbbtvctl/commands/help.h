// What --help says, in this program's words, and what it shares with the manual pages.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace hbbtv::ctl {

// For the whole command line; after all commands have been added.
void SetHelp(CLI::App& app);

// The commands that users see.
std::vector<const CLI::App*> Commands(const CLI::App& app);

// The options that users see, or the arguments.
std::vector<const CLI::Option*> Options(const CLI::App& command, bool positional);

// "METHOD", "FAMILY..."
std::string ArgumentName(const CLI::Option& argument);

// The option's description with its default.
std::string Purpose(const CLI::Option& option);

// A part of the footer: "Examples:", and the indented lines below it; or lines without a heading.
struct FooterPart {
    std::string heading;  // without the colon
    std::string text;
};
std::vector<FooterPart> FooterParts(const CLI::App& command);

}  // namespace hbbtv::ctl
