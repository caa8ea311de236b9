#include "console_blocks.h"

#include <regex>
#include <sstream>

namespace hbbtv::test {

namespace {

const std::regex kHandle("0x[0-9a-f]{6,}|\\b[1-9][0-9]{6,9}\\b");

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// Matches what may differ between runs, and the blanks that align it.
std::string Steady(std::string line) {
    static const std::pair<std::regex, const char*> kRules[] = {
        {std::regex("20[0-9]{2}-[0-9-]+T[0-9:.]+Z  [0-9.]+"), "TIME"},
        {std::regex(
             "\"(ms|wall_us|monotonic_us|took_us|duration_ms|calls|calls_per_second|p50|p90|p99|p99\\.9|max)\":[0-9]+"),
         "\"$1\":N"},
        {std::regex("[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{6}"), "CLOCK"},
        {std::regex("[0-9]+\\.[0-9]{3} ms"), "N ms"},
        {std::regex("[0-9]+\\.[0-9]{3} s"), "N s"},
        {std::regex("[0-9]+\\.[0-9] s: [0-9]+ calls, [0-9]+ per second"), "N s: N calls, N per second"},
        {std::regex("\\([0-9]{2,}\\)"), "(PROCESS)"},
        {std::regex("[0-9]+ of 107 bytes"), "N of 107 bytes"},
        {std::regex("process [0-9]+"), "process N"},
        {std::regex(
             "[0-9]+ (answered|failed|one-way|reconnects|received|sent|dropped|messages|wait;|connections|in all)"),
         "N $1"},
        {std::regex(" +"), " "},
    };
    for (const auto& [pattern, steady] : kRules) line = std::regex_replace(line, pattern, steady);
    return line;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

}  // namespace

std::vector<Example> ConsoleExamples(const std::string& markdown) {
    std::vector<Example> examples;
    bool inside = false;
    for (const std::string& line : Lines(markdown)) {
        if (line.rfind("```", 0) == 0) {
            inside = line == "```console";
        } else if (inside && line.rfind("$ ", 0) == 0) {
            examples.push_back({line.substr(2), {}});
        } else if (inside && !examples.empty()) {
            examples.back().output.push_back(line);
        }
    }
    return examples;
}

std::string ExampleComparison::Command(const Example& example) const {
    std::string command = Replaced(example.command, "/tmp/tv", mDirectory);
    for (const auto& [documents, runs] : mHandles) command = Replaced(command, documents, runs);
    return command;
}

bool ExampleComparison::SameLine(const std::string& expected, const std::string& actual) {
    std::string wanted = Steady(expected);
    const std::string is = Steady(Replaced(actual, mDirectory, "/tmp/tv"));
    std::smatch handle;
    std::string rest = is;
    std::string translated;
    std::string left = wanted;
    while (std::regex_search(left, handle, kHandle)) {
        std::smatch own;
        if (!std::regex_search(rest, own, kHandle)) return false;
        const auto known = mHandles.emplace(handle.str(), own.str()).first;
        translated += handle.prefix().str() + known->second;
        left = handle.suffix();
        rest = own.suffix();
    }
    return translated + left == is;
}

std::string ExampleComparison::Difference(const Example& example, const std::string& output) {
    const std::vector<std::string> actual = Lines(output);
    size_t next = 0;
    bool skipping = false;
    for (const std::string& expected : example.output) {
        if (expected == "...") {
            skipping = true;
            continue;
        }
        while (skipping && next < actual.size() && !SameLine(expected, actual[next])) ++next;
        if (next >= actual.size() || !SameLine(expected, actual[next])) {
            return "$ " + example.command + "\nthe document says:  " + expected +
                   "\nthe program says:   " + (next < actual.size() ? actual[next] : "(no more)") +
                   "\n\nall it says:\n" + output;
        }
        skipping = false;
        ++next;
    }
    if (skipping || next == actual.size()) return "";
    return "$ " + example.command + "\nthe program says more: " + actual[next] + "\n\nall it says:\n" + output;
}

}  // namespace hbbtv::test
