// hbbtvctl replay: takes the place of one side of a recording.
#include "traffic/replay/replay.h"

#include <cinttypes>
#include <cstdio>

#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/text/counted.h"
#include "common/text/json.h"
#include "common/text/printable.h"
#include "common/text/quote.h"

namespace hbbtv::ctl {

namespace {

using traffic::ReplayFinding;
using traffic::ReplaySummary;

struct ReplayOptions {
    std::string file;
    std::string as;
    std::string delay{"recorded"};
    std::string onMiss{"fail"};
    TimeOption limit{""};
    TimeOption timeout{"10s"};
    bool strict = false;
    bool repeats = false;
    bool json = false;
};

std::string CheckDelay(const std::string& word) {
    return word == "recorded" ? "" : CheckDuration(word);
}

// Returns a check of an option with a few words.
std::function<std::string(const std::string&)> OneOf(const std::string& first, const std::string& second) {
    return [first, second](const std::string& word) {
        return word == first || word == second ? "" : Quoted(word) + " is neither " + first + " nor " + second;
    };
}

void Print(const ReplayFinding& finding, bool json) {
    if (json) {
        std::printf("%s\n", WriteJson(ToJson(finding)).c_str());
    } else {
        const std::string record = finding.record == 0 ? "" : " record " + std::to_string(finding.record) + ",";
        std::printf("%s:%s %s\n    %s\n", NameOf(finding.kind).c_str(), record.c_str(),
                    Printable(finding.message).c_str(), Printable(finding.text).c_str());
    }
    std::fflush(stdout);
}

void PrintSummary(const ReplaySummary& summary, bool json, const traffic::Conversation& conversation) {
    if (json) {
        std::printf("%s\n", WriteJson(ToJson(summary)).c_str());
        return;
    }
    std::printf("replayed %" PRIu64 " of %s and %" PRIu64 " of %s\n", summary.requestsReplayed,
                Counted(summary.requests, "request").c_str(), summary.eventsReplayed,
                Counted(summary.events, "event").c_str());
    std::printf("%" PRIu64 " not in the recording, %" PRIu64 " replied differently, %" PRIu64
                " with other times only, %" PRIu64 " did not come, %" PRIu64 " not delivered\n",
                summary.misses, summary.differences, summary.clocks, summary.missing, summary.undelivered);
    if (conversation.damaged > 0) {
        std::printf("%s of the recording cannot be replayed\n",
                    Counted(conversation.damaged, "damaged message").c_str());
    }
}

int Run(const std::string& directory, const ReplayOptions& options) {
    traffic::RecordingReader reader(options.file);
    const traffic::Conversation conversation = ReadConversation(reader);
    for (const std::string& problem : reader.Problems()) {
        std::fprintf(stderr, "hbbtvctl: skipped %s\n", Printable(problem).c_str());
    }
    traffic::ReplaySettings settings;
    settings.asPlatform = options.as == "platform";
    settings.directory = directory;
    settings.delay = ParseDuration(options.delay);
    settings.limit = options.limit.Limit();
    settings.timeout = options.timeout.Value();
    settings.strict = options.strict;
    settings.repeats = options.repeats;
    settings.closeOnMiss = options.onMiss == "close";
    traffic::Replay replay(conversation, settings,
                           [&options](const ReplayFinding& finding) { Print(finding, options.json); });
    if (settings.asPlatform) {
        std::fprintf(stderr, "hbbtvctl: %s of %s; listening; press Ctrl-C to stop\n",
                     Counted(conversation.exchanges.size(), "exchange").c_str(), Printable(options.file).c_str());
    }
    const ReplaySummary summary = replay.Run();
    PrintSummary(summary, options.json, conversation);
    if (summary.interrupted) return kInterrupted;
    return summary.Same() ? kDone : kUnexpected;
}

}  // namespace

void AddReplay(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<ReplayOptions>();
    CLI::App* command = app.add_subcommand("replay", "Take the place of one side of a recording");
    command->add_option("FILE", options->file, "Recording, or - for standard input")->type_name("FILE")->required();
    command
        ->add_option("--as", options->as,
                     "platform: answer requests and send events as recorded; library: send the recorded requests and "
                     "compare the replies")
        ->type_name("SIDE")
        ->required()
        ->check(OneOf("platform", "library"));
    command
        ->add_option("--delay", options->delay,
                     "Time until a reply (as the platform) or until the next request (as the library), instead of the "
                     "recorded one")
        ->type_name("TIME")
        ->check(CheckDelay)
        ->capture_default_str();
    command->add_flag("--strict", options->strict, "As the platform: requests must come in the recorded order");
    command->add_flag("--repeat", options->repeats,
                      "As the platform: answer a request again as the last time when the recording has no further one");
    command->add_option("--on-miss", options->onMiss, "As the platform: fail replies -1, close closes the connection")
        ->type_name("ACTION")
        ->check(OneOf("fail", "close"))
        ->capture_default_str();
    AddTime(*command, "--for", options->limit, "End after this time (default: no limit)");
    AddTime(*command, "--timeout", options->timeout, "As the library: maximum time to wait for a reply or an event");
    AddJson(*command, options->json);
    command->footer(
        "The exit code is 7 if something is not as recorded.\n\n"
        "Examples:\n"
        "  hbbtvctl replay names.ndjson --as library\n"
        "  mkdir -p played; hbbtvctl --directory played replay traffic.ndjson --as platform --for 100ms\n"
        "  mkdir -p played; hbbtvctl --directory played replay traffic.ndjson --as platform --repeat --for 100ms");
    command->callback([options, &invocation] {
        invocation.run = [options, &invocation] { return Run(invocation.directory, *options); };
    });
}

}  // namespace hbbtv::ctl
