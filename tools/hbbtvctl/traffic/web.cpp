// hbbtvctl web: a page that shows what goes between a library and a platform, live.
#include <csignal>
#include <cstdio>
#include <exception>
#include <mutex>
#include <thread>

#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/interruption.h"
#include "common/text/printable.h"
#include "common/time_stamp.h"
#include "traffic/relay/relay.h"
#include "traffic/relay_options.h"
#include "traffic/select/redaction.h"
#include "traffic/web/web_session.h"

namespace hbbtv::ctl {

namespace {

using traffic::Record;
using traffic::WebSession;

// Records of a file between two looks for a signal.
constexpr uint64_t kLookEvery = 1000;

struct WebOptions {
    std::string file;
    uint16_t port = 0;
    std::string record;
    bool redacted = false;
    RelayOptions relay;
    TimeOption duration{""};
};

// The thread of the server.
class Serving {
  public:
    explicit Serving(WebSession& session) : mSession(session), mThread([&session] { session.Run(); }) {}
    ~Serving() {
        mSession.Stop();
        mThread.join();
    }
    Serving(const Serving&) = delete;
    Serving& operator=(const Serving&) = delete;

  private:
    WebSession& mSession;
    std::thread mThread;
};

void PrintAddress(const WebSession& session) {
    std::printf("%s\n", session.Address().c_str());
    std::fflush(stdout);
}

// Redacts records, if that is wanted. Thread-safe: the questions of a page come on another thread.
class Redactor {
  public:
    explicit Redactor(bool wanted) : mWanted(wanted) {}

    void Apply(Record& record) {
        if (!mWanted) return;
        std::lock_guard<std::mutex> lock(mMutex);
        mRedaction.Apply(record);
    }
    void Apply(traffic::RecordingHead& head) const {
        if (mWanted) traffic::Redaction::Apply(head);
    }

  private:
    const bool mWanted;
    std::mutex mMutex;
    traffic::Redaction mRedaction;  // guarded by mMutex
};

// Serves a recording.
int ShowFile(const std::string& directory, const WebOptions& options) {
    Interruption interruption;
    traffic::RecordingReader reader(options.file);
    Redactor redactor(options.redacted);
    traffic::RecordingHead head = reader.Head();
    redactor.Apply(head);
    WebSession session({directory, "", options.port, head, nullptr, [&redactor](Record& r) { redactor.Apply(r); }});
    const Serving serving(session);
    PrintAddress(session);
    for (uint64_t count = 1; std::optional<Record> record = reader.Next(); ++count) {
        redactor.Apply(*record);
        session.Add(*record);
        const bool look = count % kLookEvery == 0;
        if (look && interruption.Wait(Milliseconds(0)) != Interruption::Cause::Deadline) return kDone;
    }
    for (const std::string& problem : reader.Problems()) {
        std::fprintf(stderr, "hbbtvctl: %s; skipped\n", Printable(problem).c_str());
    }
    interruption.Wait(options.duration.Limit());
    return kDone;
}

// Writes records to a file, if one is given. A file that cannot be written is reported, and the page continues.
class Keeper {
  public:
    Keeper(const std::string& path, const traffic::RecordingHead& head) {
        if (!path.empty()) mWriter = std::make_unique<traffic::RecordingWriter>(path, head);
    }

    // For the thread of the relay.
    void Keep(const Record& record) {
        const std::string problem = mWriter == nullptr ? "" : mWriter->Write(record);
        if (!problem.empty() && problem != mProblem) {
            std::fprintf(stderr, "hbbtvctl: cannot write the recording: %s; records are missing in it\n",
                         problem.c_str());
        }
        mProblem = problem;
    }

  private:
    std::unique_ptr<traffic::RecordingWriter> mWriter;
    std::string mProblem;
};

// Serves what the relay sees.
int ShowTraffic(const std::string& directory, const WebOptions& options) {
    KeepRunning();
    Interruption interruption{SIGHUP, SIGQUIT, SIGUSR1, SIGUSR2};
    const traffic::RelaySettings settings = SettingsOf(directory, options.relay, "hbbtvctl web");
    Redactor redactor(options.redacted);
    traffic::RecordingHead head = HeadOf(settings);
    redactor.Apply(head);
    Keeper keeper(options.record, head);
    traffic::Relay* known = nullptr;  // asked by the page, once it is served
    WebSession session(traffic::WebSettings{settings.directory, settings.platform, options.port, head,
                                            [&known] { return known->Open(); },
                                            [&redactor](Record& record) { redactor.Apply(record); }});
    // The first records come while the relay is created.
    traffic::Relay relay(settings, [&](const Record& seen) {
        Record record = seen;
        redactor.Apply(record);
        keeper.Keep(record);
        session.Add(record);
    });
    known = &relay;
    SayStart(relay, settings);
    const Serving serving(session);
    RunningRelay running(relay, interruption);
    PrintAddress(session);
    {
        const auto prompt = PromptOf(options.relay, relay);
        interruption.Wait(options.duration.Limit());
    }
    running.Stop();
    return kDone;
}

}  // namespace

void AddWeb(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<WebOptions>();
    CLI::App* command = app.add_subcommand("web", "Show the traffic and the television on a page of a browser");
    command->add_option("FILE", options->file, "Show this recording instead of the traffic; - is standard input")
        ->type_name("FILE");
    command->add_option("--port", options->port, "Port on 127.0.0.1 (default: any that is free)")
        ->type_name("PORT")
        ->check(WholeNumber(1, 65535));
    command->add_option("--record", options->record, "Write all records to a new file")->type_name("FILE");
    AddRedact(*command, options->redacted);
    AddTime(*command, "--for", options->duration, "Stop after this time");
    AddRelayOptions(*command, options->relay);
    command->footer(
        "Prints the address of the page, which contains a token: only those who know it get anything. Takes the place "
        "of the\n"
        "sockets as `hbbtvctl monitor` does, with the same effects on the system.\n\n"
        "Examples:\n"
        "  hbbtvctl web --for 1s\n"
        "  hbbtvctl web --break --record kept.ndjson --for 1s\n"
        "  hbbtvctl web traffic.ndjson --for 1s");
    command->callback([options, &invocation] {
        invocation.run = [options, &invocation] {
            return options->file.empty() ? ShowTraffic(invocation.directory, *options)
                                         : ShowFile(invocation.directory, *options);
        };
    });
}

}  // namespace hbbtv::ctl
