// hbbtvctl monitor: shows and records what goes between a library and a platform.
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>

#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/interruption.h"
#include "traffic/observer.h"
#include "traffic/output.h"
#include "traffic/relay/relay.h"
#include "traffic/relay_options.h"
#include "traffic/rules/rule.h"

namespace hbbtv::ctl {

namespace {

constexpr Milliseconds kTick{250};

struct MonitorOptions {
    RelayOptions relay;
    ObserverSettings observer;
    TimeOption duration{""};
};

// Waits for the end: a signal, the time, the number of records, a reader that has gone, or an error of the relay.
void Wait(Interruption& interruption, const std::optional<Milliseconds>& limit, const traffic::Relay& relay,
          Observer& observer) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    while (true) {
        Milliseconds tick = kTick;
        if (limit) {
            const auto left = std::chrono::ceil<Milliseconds>(start + *limit - Clock::now());
            if (left <= Milliseconds(0)) return;
            tick = std::min(tick, left);
        }
        if (interruption.Wait(tick) != Interruption::Cause::Deadline) return;
        observer.Show(relay.Open());
    }
}

int Run(const std::string& directory, const MonitorOptions& options) {
    KeepRunning();
    Interruption interruption{SIGHUP, SIGQUIT, SIGUSR1, SIGUSR2};
    const traffic::RelaySettings settings = SettingsOf(directory, options.relay, "hbbtvctl monitor");
    ObserverSettings shown = options.observer;
    shown.head = HeadOf(settings);
    Output output;
    Observer observer(shown, output, [&interruption] { interruption.Wake(); });
    traffic::Relay relay(settings, [&observer](const traffic::Record& record) { observer.Take(record); });
    SayStart(relay, settings);
    RunningRelay running(relay, interruption);
    {
        const auto prompt = PromptOf(options.relay, relay);
        Wait(interruption, options.duration.Limit(), relay, observer);
    }
    running.Stop();
    observer.Finish();
    if (output.Error() != 0 && output.Error() != EPIPE) {
        throw Failure(kUsage, std::string("cannot write standard output: ") + std::strerror(output.Error()));
    }
    return kDone;
}

}  // namespace

void AddMonitor(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<MonitorOptions>();
    CLI::App* command = app.add_subcommand("monitor", "Show and record what goes between the library and the platform");
    command
        ->add_option("FAMILY", options->relay.families, "Only these families (default: all sockets, also unknown ones)")
        ->type_name("FAMILY");
    command->add_option("--filter", options->observer.filter, "Show only what matches; see `hbbtvctl show --help`")
        ->type_name("FILTER");
    AddJson(*command, options->observer.json);
    command->add_option("--record", options->observer.file, "Write all records to a new file")->type_name("FILE");
    AddRedact(*command, options->observer.redacted);
    command->add_flag("--stats", options->observer.statistics, "Show statistics every second instead of the records");
    command->add_option("--count", options->observer.count, "Stop after this many records have been shown")
        ->type_name("NUMBER")
        ->check(WholeNumber(1));
    AddTime(*command, "--for", options->duration, "Stop after this time");
    AddRelayOptions(*command, options->relay);
    command->footer(
        std::string(
            "Takes the place of the sockets, passes each message on unchanged, and shows it with its reply and "
            "duration.\n"
            "At the end the sockets are as before; if the monitor is killed, the next one restores them, or `hbbtvctl "
            "doctor`.\n"
            "Connections that exist already are not seen until their ends connect again. --break makes them do so, "
            "which "
            "fails\n"
            "the first request of each family. So does the end of the monitor.\n\n"
            "A rule is a filter, an action and options: 'op:SetChannel delay=2s count=3'. Actions:\n") +
        traffic::RuleActions() + "Options of rules:\n" + traffic::RuleOptions() +
        "On a terminal, rules can be typed while the monitor runs; \"help\" lists the commands.\n\n"
        "Examples:\n"
        "  hbbtvctl monitor channel channel_config --for 1s\n"
        "  hbbtvctl monitor --filter 'op:SetChannel | ms>5 | event' --for 1s\n"
        "  hbbtvctl monitor --record new.ndjson --redact --stats --for 1s\n"
        "  hbbtvctl monitor --break --json --for 1s\n"
        "  hbbtvctl monitor --rule 'op:SetChannel delay=2s' --rule 'p=0.01 corrupt' --for 1s");
    command->callback([options, &invocation] {
        invocation.run = [options, &invocation] { return Run(invocation.directory, *options); };
    });
}

}  // namespace hbbtv::ctl
