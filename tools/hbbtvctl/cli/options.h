// Options that several commands share.
#pragma once

#include <CLI/App.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "cli/arguments.h"
#include "common/duration.h"

namespace hbbtv::ctl {

// "300ms", "2s", or plain milliseconds.
struct TimeOption {
    explicit TimeOption(std::string text) : word(std::move(text)) {}

    Milliseconds Value() const;

    // Returns nothing if the option is not given and has no default.
    std::optional<Milliseconds> Limit() const;

    std::string word;
};

void AddTime(CLI::App& command, const std::string& name, TimeOption& option, const std::string& purpose);

// Returns a check of an option: an integer in a range.
std::function<std::string(const std::string&)> WholeNumber(uint64_t least, uint64_t most = UINT64_MAX);

// ARGUMENT... and --json [OBJECT].
struct ArgumentOptions {
    GivenArguments given;
    bool json = false;

    bool Any() const { return !given.words.empty() || given.json; }
};

void AddArguments(CLI::App& command, ArgumentOptions& options);

// Adds --json for the output only.
void AddJson(CLI::App& command, bool& json);

// Adds --take-over, of commands that register callback objects.
CLI::Option* AddTakeOver(CLI::App& command, bool& takeOver);

// Adds --redact, for commands that show or write messages.
void AddRedact(CLI::App& command, bool& redacted);

// Returns the words of the command line as the parser needs them. In commands that take arguments, "--json {...}"
// becomes "--json --json-arguments={...}", so that --json takes a value only if the next word looks like one, and
// "[...]" is marked as one argument.
std::vector<std::string> PreparedWords(const CLI::App& app, int argc, char** argv);

}  // namespace hbbtv::ctl
