#include "cli/options.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "common/text/quote.h"

namespace hbbtv::ctl {

namespace {

constexpr const char* kJsonArguments = "--json-arguments";

// Precedes an argument that CLI11 would take for a list of its own, and split at the commas: "[...]".
constexpr char kWhole = '\x01';

std::string Marked(const std::string& word) {
    return !word.empty() && (word[0] == '[' || word[0] == kWhole) ? kWhole + word : word;
}

std::string Unmarked(const std::string& word) {
    return !word.empty() && word[0] == kWhole ? word.substr(1) : word;
}

// Returns whether the word is "{...}", or refers to a file or standard input.
bool IsObject(const std::string& word) {
    return word == "-" || (!word.empty() && (word[0] == '{' || word[0] == '@'));
}

}  // namespace

Milliseconds TimeOption::Value() const {
    return ParseDuration(word).value_or(Milliseconds(0));
}

std::optional<Milliseconds> TimeOption::Limit() const {
    return ParseDuration(word);
}

void AddTime(CLI::App& command, const std::string& name, TimeOption& option, const std::string& purpose) {
    CLI::Option* added = command.add_option(name, option.word, purpose)->type_name("TIME")->check(CheckDuration);
    if (!option.word.empty()) added->capture_default_str();
}

std::function<std::string(const std::string&)> WholeNumber(uint64_t least, uint64_t most) {
    return [least, most](const std::string& word) {
        errno = 0;
        const bool digits = !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
        const uint64_t number = digits ? std::strtoull(word.c_str(), nullptr, 10) : 0;
        if (digits && errno == 0 && number >= least && number <= most) return std::string();
        return Quoted(word) + " is not an integer " +
               (most == UINT64_MAX ? "of at least " + std::to_string(least)
                                   : "from " + std::to_string(least) + " to " + std::to_string(most));
    };
}

void AddArguments(CLI::App& command, ArgumentOptions& options) {
    command
        .add_option("ARGUMENT", options.given.words,
                    "NAME=VALUE, or values in order; a value can be @FILE, or - for standard input")
        ->type_name("ARGUMENT")
        ->transform(Unmarked, "");
    command.add_flag("--json", options.json,
                     "Print JSON; if an object follows ('{...}', @FILE or -), take the arguments from it");
    command.add_option(kJsonArguments, options.given.json)->group("");
}

void AddRedact(CLI::App& command, bool& redacted) {
    command.add_flag("--redact", redacted,
                     "Replace what belongs to one television or its viewer: ids, keys, entered text, queries of URLs");
}

void AddJson(CLI::App& command, bool& json) {
    command.add_flag("--json", json, "Print JSON");
}

CLI::Option* AddTakeOver(CLI::App& command, bool& takeOver) {
    return command.add_flag("--take-over", takeOver, "Replace a client that is registered; it loses its events");
}

std::vector<std::string> PreparedWords(const CLI::App& app, int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    const auto command = std::find_if(words.begin(), words.end(), [&app](const std::string& word) {
        return !app.get_subcommands([&word](const CLI::App* named) {
                       return named->get_name() == word && named->get_option_no_throw(kJsonArguments) != nullptr;
                   })
                    .empty();
    });
    std::transform(command, words.end(), command, Marked);
    for (auto word = command; word != words.end() && *word != "--"; ++word) {
        if (word->rfind("--json=", 0) == 0) {
            const std::string object = word->substr(sizeof("--json=") - 1);
            *word = "--json";
            word = words.insert(word + 1, std::string(kJsonArguments) + "=" + object);
        } else if (*word == "--json" && word + 1 != words.end() && IsObject(word[1])) {
            word[1] = std::string(kJsonArguments) + "=" + word[1];
            ++word;
        }
    }
    return words;
}

}  // namespace hbbtv::ctl
