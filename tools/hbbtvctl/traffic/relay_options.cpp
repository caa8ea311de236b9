#include "traffic/relay_options.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "common/failure.h"
#include "common/text/counted.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "common/time_stamp.h"
#include "traffic/rules/rule.h"
#include "wire/endpoint.h"

namespace hbbtv::ctl {

namespace {

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

// A wrong name would be a relay that waits for sockets for ever.
void CheckDirectories(const traffic::RelaySettings& settings) {
    for (const std::string& directory : {settings.directory, settings.platform}) {
        if (directory.empty()) continue;
        std::error_code error;
        if (std::filesystem::is_directory(directory, error)) continue;
        const std::string reason = error ? error.message() : "not a directory";
        throw Failure(kUnavailable, directory + ": " + reason + "; create it, or use that of the sockets");
    }
    std::error_code ignored;
    if (!settings.platform.empty() && std::filesystem::equivalent(settings.directory, settings.platform, ignored)) {
        throw Failure(kUsage, "--between needs two directories; leave it out if there is one");
    }
}

}  // namespace

void AddRelayOptions(CLI::App& command, RelayOptions& options) {
    command
        .add_option("--between", options.between,
                    "The library's directory and the platform's, if they are two; none of their files is moved")
        ->type_name("LIBRARY_DIR PLATFORM_DIR")
        ->expected(2);
    command.add_flag("--break", options.breaks, "End the connections that exist already, so that they are seen");
    command.add_option("--rule", options.rules, "Do something to messages on purpose; can be given several times")
        ->type_name("RULE")
        ->expected(1)
        ->take_all();
    command.add_option("--rules", options.rulesFile, "Read rules from this file, or with - from standard input")
        ->type_name("FILE");
}

traffic::RelaySettings SettingsOf(const std::string& directory, const RelayOptions& options,
                                  const std::string& program) {
    traffic::RelaySettings settings;
    settings.directory = options.between.empty() ? directory : options.between[0];
    if (!options.between.empty()) settings.platform = options.between[1];
    CheckDirectories(settings);
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
    settings.program = program;
    return settings;
}

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

std::unique_ptr<Prompt> PromptOf(const RelayOptions& options, traffic::Relay& relay) {
    // Standard input that is not a terminal may be meant for another program.
    const bool typed = options.rulesFile == "-" || isatty(STDIN_FILENO) != 0;
    return typed ? std::make_unique<Prompt>(relay) : nullptr;
}

traffic::RecordingHead HeadOf(const traffic::RelaySettings& settings) {
    traffic::RecordingHead head;
    head.program = "hbbtvctl " HBBTV_VERSION;
    head.directory = settings.directory;
    head.zone = LocalZone();
    return head;
}

RunningRelay::RunningRelay(traffic::Relay& relay, Interruption& interruption)
    : mRelay(relay), mThread([this, &interruption] {
          try {
              mRelay.Run();
          } catch (const std::exception& e) {
              mError = e.what();
          }
          interruption.Wake();
      }) {}

RunningRelay::~RunningRelay() {
    mRelay.Stop();
    if (mThread.joinable()) mThread.join();
}

void RunningRelay::Stop() {
    mRelay.Stop();
    mThread.join();
    if (!mError.empty()) throw Failure(kUnavailable, "the relay has ended: " + mError);
}

}  // namespace hbbtv::ctl
