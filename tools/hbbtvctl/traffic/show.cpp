// hbbtvctl show: a recording as lines, numbers or a chart.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/text/json.h"
#include "common/text/pointer_text.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "traffic/exports.h"
#include "traffic/report/difference.h"
#include "traffic/report/ladder.h"
#include "traffic/report/slowest.h"
#include "traffic/select/selection.h"
#include "traffic/view/line.h"
#include "traffic/view/statistics.h"

namespace hbbtv::ctl {

namespace {

using traffic::Record;
using traffic::Selection;
using traffic::SelectionSettings;
using traffic::Statistics;

struct ShowOptions {
    SelectionSettings selection;
    std::string handle;
    bool json = false;
    bool stats = false;
    bool slow = false;
    bool ladder = false;
    std::string svg;
    std::string diff;
    std::string record;
    ExportOptions exports;
};

std::string CheckHandle(const std::string& word) {
    const bool digits = word.find_first_not_of("0123456789abcdefABCDEFxX") == std::string::npos;
    const std::optional<uint64_t> handle = digits ? ParsePointer(word) : std::nullopt;
    return handle && *handle != 0 ? "" : Quoted(word) + " is not a handle, such as 0x1388f0af";
}

// What could not be read is reported at the end, so that it is seen.
void ReportProblems(const Selection& selection) {
    constexpr size_t kMost = 10;
    const std::vector<std::string>& problems = selection.Reader().Problems();
    for (size_t i = 0; i < problems.size() && i < kMost; ++i) {
        std::fprintf(stderr, "hbbtvctl: %s; skipped\n", Printable(problems[i]).c_str());
    }
    if (selection.Reader().Skipped() > kMost) {
        std::fprintf(stderr, "hbbtvctl: %llu further lines were skipped\n",
                     static_cast<unsigned long long>(selection.Reader().Skipped() - kMost));
    }
}

// Calls `take` with each selected record until it returns false.
template <typename Take>
void ForEach(Selection& selection, Take take) {
    while (const std::optional<Record> record = selection.Next()) {
        if (!take(*record)) break;
    }
    ReportProblems(selection);
}

// The reader of the output may have gone, as `| head` does.
bool Print(const std::string& line) {
    return std::fputs(line.c_str(), stdout) >= 0 && std::fputc('\n', stdout) >= 0;
}

Statistics StatisticsOf(Selection& selection) {
    Statistics statistics;
    ForEach(selection, [&statistics](const Record& record) {
        statistics.Add(record);
        return true;
    });
    return statistics;
}

int ShowStatistics(Selection& selection, bool json) {
    const Statistics statistics = StatisticsOf(selection);
    const std::string text = json ? WriteJson(statistics.Json()) + "\n" : statistics.Text(selection.Head().zone);
    std::fputs(text.c_str(), stdout);
    return kDone;
}

int ShowDifference(const ShowOptions& options, Selection& before) {
    SelectionSettings settings = options.selection;
    settings.path = options.diff;
    Selection after(settings);
    const Statistics old = StatisticsOf(before);
    const Statistics current = StatisticsOf(after);
    const std::string text =
        options.json ? WriteJson(DifferenceJson(old, current)) + "\n" : DifferenceText(old, current);
    std::fputs(text.c_str(), stdout);
    return kDone;
}

int ShowLadder(Selection& selection, const std::string& svg) {
    traffic::Ladder ladder(selection.Head().zone);
    ForEach(selection, [&](const Record& record) {
        ladder.Add(record, selection.Names());
        return true;
    });
    if (svg.empty()) {
        std::fputs(ladder.Text().c_str(), stdout);
        return kDone;
    }
    std::ofstream file(svg);
    file << ladder.Svg();
    file.close();
    if (!file) throw Failure(kUsage, "cannot write " + svg + ": " + std::strerror(errno));
    return kDone;
}

int ShowSlowest(Selection& selection) {
    traffic::Slowest slowest(selection.Head().zone);
    ForEach(selection, [&](const Record& record) {
        slowest.Add(record, selection.Names());
        return true;
    });
    for (const std::string& line : slowest.Lines()) std::printf("%s\n", line.c_str());
    return kDone;
}

int WriteRecording(Selection& selection, const std::string& path) {
    traffic::RecordingWriter writer(path, selection.Head());
    uint64_t count = 0;
    ForEach(selection, [&](const Record& record) {
        const std::string problem = writer.Write(record);
        if (!problem.empty()) throw Failure(kUsage, "cannot write " + path + ": " + problem);
        ++count;
        return true;
    });
    std::printf("%llu records in %s\n", static_cast<unsigned long long>(count), Printable(path).c_str());
    return kDone;
}

int ShowLines(Selection& selection, bool json) {
    ForEach(selection, [&](const Record& record) {
        return Print(json ? WriteJson(ToJson(record)) : Line(record, selection.Names(), selection.Head().zone));
    });
    if (selection.Followed() == nullptr || json) return kDone;
    for (const std::string& fact : selection.Followed()->Facts()) std::printf("%s\n", Printable(fact).c_str());
    return kDone;
}

int Run(ShowOptions options) {
    if (!options.handle.empty()) options.selection.follow = ParsePointer(options.handle);
    const bool numbers = options.stats || !options.diff.empty();
    options.selection.withPayloads = !numbers;
    Selection selection(options.selection);
    if (!options.diff.empty()) return ShowDifference(options, selection);
    if (options.stats) return ShowStatistics(selection, options.json);
    if (!options.record.empty()) return WriteRecording(selection, options.record);
    if (!options.exports.File().empty()) {
        WriteExport(options.exports, selection, options.selection.path == "-");
        ReportProblems(selection);
        return kDone;
    }
    if (options.ladder || !options.svg.empty()) return ShowLadder(selection, options.svg);
    if (options.slow) return ShowSlowest(selection);
    return ShowLines(selection, options.json);
}

void AddSelection(CLI::App& command, ShowOptions& options) {
    command.add_option("FILE", options.selection.path, "A recording; - is standard input")
        ->type_name("FILE")
        ->required();
    command.add_option("--filter", options.selection.filter, "Show only these records; see below")->type_name("FILTER");
    command.add_option("--follow", options.handle, "Show only what is about this handle, and a summary")
        ->type_name("HANDLE")
        ->check(CheckHandle);
    command
        .add_option("--from", options.selection.from, "Show only records from this time on, in the recording's zone")
        ->type_name("TIME");
    command.add_option("--to", options.selection.to, "Show only records up to this time")->type_name("TIME");
    AddRedact(command, options.selection.redacted);
}

void AddForms(CLI::App& command, ShowOptions& options) {
    std::vector<CLI::Option*> forms{
        command.add_flag("--stats", options.stats, "Show calls, errors, bytes and times of each operation"),
        command.add_flag("--slow", options.slow, "Show the exchanges without a reply, and the 20 slowest ones"),
        command.add_flag("--ladder", options.ladder, "Show a chart of the messages"),
        command.add_option("--svg", options.svg, "Write the chart to this file")->type_name("FILE"),
        command.add_option("--diff", options.diff, "Compare with this recording, by operation")->type_name("FILE"),
        command.add_option("--record", options.record, "Write the records to this file, which must not exist")
            ->type_name("FILE")};
    for (CLI::Option* form : AddExports(command, options.exports)) forms.push_back(form);
    for (CLI::Option* form : forms) {
        for (CLI::Option* other : forms) {
            if (form != other && form->get_name() + other->get_name() != "--ladder--svg" &&
                form->get_name() + other->get_name() != "--svg--ladder") {
                form->excludes(other);
            }
        }
    }
    AddJson(command, options.json);
    CLI::Option* const json = command.get_option("--json");
    for (CLI::Option* form : forms) {
        if (form->get_name() != "--stats" && form->get_name() != "--diff") form->excludes(json);
    }
}

}  // namespace

void AddShow(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<ShowOptions>();
    CLI::App* command = app.add_subcommand("show", "Show a recording of the traffic");
    AddSelection(*command, *options);
    AddForms(*command, *options);
    command->footer(traffic::FilterHelp() +
                    "\nExamples:\n"
                    "  hbbtvctl show traffic.ndjson --filter 'family:channel & !op:GetName & ms>0.1'\n"
                    "  hbbtvctl show traffic.ndjson --stats --json\n"
                    "  hbbtvctl show traffic.ndjson --follow 0x1000\n"
                    "  hbbtvctl show traffic.ndjson --filter 'event | error' --ladder\n"
                    "  hbbtvctl show traffic.ndjson --html traffic.html");
    command->callback([options, &invocation] { invocation.run = [options] { return Run(*options); }; });
}

}  // namespace hbbtv::ctl
