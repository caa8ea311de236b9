// What the commands that run a relay share: its options, its thread, and what they report.
#pragma once

#include <CLI/App.hpp>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "common/interruption.h"
#include "traffic/prompt.h"
#include "traffic/record/recording.h"
#include "traffic/relay/relay.h"

namespace hbbtv::ctl {

struct RelayOptions {
    std::vector<std::string> families;  // empty: all sockets
    std::vector<std::string> between;   // the library's directory and the platform's; empty: one directory
    bool breaks = false;
    std::vector<std::string> rules;
    std::string rulesFile;  // "-": standard input
};

// Adds --between, --break, --rule and --rules.
void AddRelayOptions(CLI::App& command, RelayOptions& options);

// Throws Failure(kUsage) for an unknown family or a rule that is wrong.
traffic::RelaySettings SettingsOf(const std::string& directory, const RelayOptions& options,
                                  const std::string& program);

// Returns the head of a recording that begins here and at this time.
traffic::RecordingHead HeadOf(const traffic::RelaySettings& settings);

// Stopping the relay would stop the traffic, so the keys of a terminal that stop a program do nothing. A recording that
// has reached the limit of the size of files is an error of writing.
void KeepRunning();

// Takes rules from standard input while it exists, if they are typed or asked for there; else null.
std::unique_ptr<Prompt> PromptOf(const RelayOptions& options, traffic::Relay& relay);

// Prints to standard error what the relay serves, and what it has restored.
void SayStart(const traffic::Relay& relay, const traffic::RelaySettings& settings);

// The thread of a relay, which restores the sockets at its end, whatever ends the wait.
class RunningRelay {
  public:
    // Wakes `interruption` when the relay has ended.
    RunningRelay(traffic::Relay& relay, Interruption& interruption);
    ~RunningRelay();
    RunningRelay(const RunningRelay&) = delete;
    RunningRelay& operator=(const RunningRelay&) = delete;

    // Throws Failure if an error has ended the relay.
    void Stop();

  private:
    traffic::Relay& mRelay;
    std::string mError;
    std::thread mThread;
};

}  // namespace hbbtv::ctl
