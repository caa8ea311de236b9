// See options.h.
#include "commands/options.h"

#include <algorithm>

#include "package/values.h"

namespace hbbtv::ctl {

namespace {

constexpr long long kLongest = 24LL * 60 * 60 * 1000;

std::optional<Milliseconds> ReadTime(const std::string& text) {
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::string unit = text.substr(digits);
    if (digits == 0 || digits > 9 || (unit != "" && unit != "ms" && unit != "s")) return std::nullopt;
    const long long number = std::stoll(text.substr(0, digits)) * (unit == "s" ? 1000 : 1);
    if (number > kLongest) return std::nullopt;
    return Milliseconds(number);
}

}  // namespace

Milliseconds TimeOption::Value() const {
    return ReadTime(word).value_or(Milliseconds(0));
}

void AddTime(CLI::App& command, const std::string& name, TimeOption& option, const std::string& purpose) {
    const auto check = [](const std::string& text) {
        return ReadTime(text) ? "" : Quoted(text) + " is no time: write 300ms or 2s, at most a day";
    };
    CLI::Option* added = command.add_option(name, option.word, purpose)->type_name("TIME")->check(check);
    if (!option.word.empty()) added->capture_default_str();
}

void AddArguments(CLI::App& command, ArgumentOptions& options) {
    command
        .add_option("arguments", options.given.words,
                    "NAME=VALUE, or values in order; a value may be @FILE, or - for standard input")
        ->type_name("ARGUMENT...");
    command.add_flag("--json", options.json,
                     "Write JSON; followed by an object ('{...}', @FILE or -), take the arguments from it");
    command.add_option("--json-arguments", options.given.json)->group("");
}

void AddJson(CLI::App& command, bool& json) {
    command.add_flag("--json", json, "Write JSON");
}

std::vector<std::string> SplitJsonOption(int argc, char** argv) {
    std::vector<std::string> words;
    for (int i = 1; i < argc; ++i) {
        words.emplace_back(argv[i]);
        const std::string next = i + 1 < argc ? argv[i + 1] : "";
        const bool object = !next.empty() && (next[0] == '{' || next[0] == '@' || next == "-");
        if (words.back() != "--json" || !object) continue;
        words.push_back("--json-arguments=" + next);
        ++i;
    }
    return words;
}

}  // namespace hbbtv::ctl
