// hbbtvctl monitor: shows and records what goes between a library and a platform.
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <set>
#include <thread>

#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/interruption.h"
#include "common/text/counted.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "common/time_stamp.h"
#include "traffic/observer.h"
#include "traffic/output.h"
#include "traffic/prompt.h"
#include "traffic/relay/relay.h"
#include "traffic/rules/rule.h"
#include "wire/endpoint.h"

namespace hbbtv::ctl {

namespace {

constexpr Milliseconds kTick{250};

struct MonitorOptions {
    std::vector<std::string> families;
    std::vector<std::string> between;
    std::vector<std::string> rules;
    std::string rulesFile;
    bool breaks = false;
    ObserverSettings observer;
    TimeOption duration{""};
};

// Returns the rules of a file, one on each line that is not empty and does not begin with "#".
std::vector<std::string> RulesIn(const std::string& path) {
    std::vector<std::string> rules;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        const size_t begin = line.find_first_not_of(" \t");
        if (begin != std::string::npos && line[begin] != '#') rules.push_back(line);
    }
    if (!file.eof() || rules.empty()) throw Failure(kUsage, "no rules in " + Quoted(path) + ", or it cannot be read");
    return rules;
}

traffic::RelaySettings SettingsOf(const std::string& directory, const MonitorOptions& options) {
    traffic::RelaySettings settings;
    settings.directory = options.between.empty() ? directory : options.between[0];
    if (!options.between.empty()) settings.platform = options.between[1];
    for (const std::string& name : options.families) {
        const WireFamily& family = FindFamily(name);
        settings.sockets.insert(RequestsOf(family).socket);
        if (family.protocol["endpoints"].isMember("events")) settings.sockets.insert(EventsOf(family).socket);
    }
    settings.breaks = options.breaks;
    settings.rules = options.rules;
    if (!options.rulesFile.empty() && options.rulesFile != "-") {
        for (const std::string& rule : RulesIn(options.rulesFile)) settings.rules.push_back(rule);
    }
    for (const std::string& rule : settings.rules) traffic::ParseRule(rule);  // before anything else is done
    settings.program = "hbbtvctl monitor";
    return settings;
}

// Stopping the relay would stop the traffic, so the keys of a terminal that stop a program do nothing. A recording that
// has reached the limit of the size of files is an error of writing.
void KeepRunning() {
    for (const int signal : {SIGTSTP, SIGTTIN, SIGTTOU, SIGXFSZ}) std::signal(signal, SIG_IGN);
}

void SayStart(const traffic::Relay& relay, const traffic::RelaySettings& settings) {
    if (!relay.Restored().empty()) {
        std::fprintf(stderr, "hbbtvctl: restored %s that a killed monitor had left\n",
                     Counted(relay.Restored().size(), "socket").c_str());
    }
    const std::string where =
        settings.platform.empty() ? settings.directory : settings.directory + " and " + settings.platform;
    std::fprintf(stderr, "hbbtvctl: %s in %s; listening; press Ctrl-C to stop\n",
                 Counted(relay.Sockets().size(), "socket").c_str(), Printable(where).c_str());
}

// The thread of a relay, which restores the sockets at its end, whatever ends the wait.
class Running {
  public:
    Running(traffic::Relay& relay, Interruption& interruption)
        : mRelay(relay), mThread([this, &interruption] {
              try {
                  mRelay.Run();
              } catch (...) {
                  mError = std::current_exception();
              }
              interruption.Wake();
          }) {}

    // Throws what has ended the relay.
    void Stop() {
        mRelay.Stop();
        mThread.join();
        if (mError) std::rethrow_exception(mError);
    }

  private:
    traffic::Relay& mRelay;
    std::exception_ptr mError;
    std::thread mThread;
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
    const traffic::RelaySettings settings = SettingsOf(directory, options);
    ObserverSettings shown = options.observer;
    shown.head.program = "hbbtvctl " HBBTV_VERSION;
    shown.head.directory = settings.directory;
    shown.head.zone = LocalZone();
    Output output;
    Observer observer(shown, output, [&interruption] { interruption.Wake(); });
    traffic::Relay relay(settings, [&observer](const traffic::Record& record) { observer.Take(record); });
    SayStart(relay, settings);
    Running running(relay, interruption);
    {
        // Standard input that is not a terminal may be meant for another program.
        const bool typed = options.rulesFile == "-" || isatty(STDIN_FILENO) != 0;
        const auto prompt = typed ? std::make_unique<Prompt>(relay) : nullptr;
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
    command->add_option("FAMILY", options->families, "Only these families (default: all sockets, also unknown ones)")
        ->type_name("FAMILY");
    command->add_option("--filter", options->observer.filter, "Show only what matches; see `hbbtvctl show --help`")
        ->type_name("FILTER");
    AddJson(*command, options->observer.json);
    command->add_option("--record", options->observer.file, "Write all records to a new file")->type_name("FILE");
    command->add_flag("--stats", options->observer.statistics, "Show statistics every second instead of the records");
    command->add_option("--count", options->observer.count, "Stop after this many records have been shown")
        ->type_name("NUMBER")
        ->check(WholeNumber(1));
    AddTime(*command, "--for", options->duration, "Stop after this time");
    command
        ->add_option("--between", options->between,
                     "The library's directory and the platform's, if they are two; none of their files is moved")
        ->type_name("LIBRARY_DIR PLATFORM_DIR")
        ->expected(2);
    command->add_flag("--break", options->breaks, "End the connections that exist already, so that they are seen");
    command->add_option("--rule", options->rules, "Do something to messages on purpose; can be given several times")
        ->type_name("RULE")
        ->expected(1)
        ->take_all();
    command->add_option("--rules", options->rulesFile, "Read rules from this file, or with - from standard input")
        ->type_name("FILE");
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
        "  hbbtvctl monitor --record new.ndjson --stats --for 1s\n"
        "  hbbtvctl monitor --break --json --for 1s\n"
        "  hbbtvctl monitor --rule 'op:SetChannel delay=2s' --rule 'p=0.01 corrupt' --for 1s");
    command->callback([options, &invocation] {
        invocation.run = [options, &invocation] { return Run(invocation.directory, *options); };
    });
}

}  // namespace hbbtv::ctl
