// hbbtvctl record import: a recording from the log of a service.
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>

#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/text/counted.h"
#include "common/text/printable.h"
#include "traffic/log/log_import.h"
#include "traffic/record/recording.h"
#include "traffic/select/redaction.h"

namespace hbbtv::ctl {

namespace {

using traffic::LogCounts;
using traffic::LogImport;
using traffic::LogSettings;
using traffic::Record;

struct RecordOptions {
    std::string action;
    LogSettings log;
    std::string file{"-"};
    std::string year;
    bool redacted = false;
};

std::string ZoneHere() {
    const time_t now = time(nullptr);
    tm parts{};
    localtime_r(&now, &parts);
    const long minutes = parts.tm_gmtoff / 60;
    char text[8];
    std::snprintf(text, sizeof(text), "%c%02ld:%02ld", minutes < 0 ? '-' : '+', std::labs(minutes) / 60 % 24,
                  std::labs(minutes) % 60);
    return text;
}

std::string CheckZone(const std::string& zone) {
    int hours = 0;
    int minutes = 0;
    char sign = '\0';
    char end = '\0';
    const bool read = zone.size() == 6 && std::sscanf(zone.c_str(), "%c%2d:%2d%c", &sign, &hours, &minutes, &end) == 3;
    return read && (sign == '+' || sign == '-') && hours <= 23 && minutes <= 59 ? "" : "expected +01:00 or the like";
}

// The file is created with the first record, so that a log without messages leaves none.
class Writer {
  public:
    explicit Writer(const std::string& path) : mPath(path) {}

    void Write(const Record& record, const std::string& zone) {
        if (!mWriter) {
            traffic::RecordingHead head;
            head.program = "hbbtvctl " HBBTV_VERSION;
            head.zone = zone;
            head.time = record.time;
            mWriter.emplace(mPath, head);
        }
        const std::string problem = mWriter->Write(record);
        if (!problem.empty()) throw Failure(kUsage, "cannot write " + mPath + ": " + problem);
    }

  private:
    const std::string mPath;
    std::optional<traffic::RecordingWriter> mWriter;
};

void Report(const LogImport& import) {
    const LogCounts& counts = import.Counts();
    for (const std::string& problem : import.Problems()) {
        std::fprintf(stderr, "hbbtvctl: %s\n", Printable(problem).c_str());
    }
    const std::string text = Counted(counts.lines, "line") + ": " + Counted(counts.exchanges, "request") + ", " +
                             Counted(counts.events, "event") + ", " + Counted(counts.notes, "warning") +
                             " of the library; " + Counted(counts.cut, "message") + " cut, " +
                             std::to_string(counts.mixed) + " mixed, " + std::to_string(counts.unknown) + " unknown; " +
                             Counted(counts.lost, "line") + " lost";
    std::fprintf(stderr, "%s\n", text.c_str());
}

int Run(RecordOptions options) {
    if (options.log.zone.empty()) options.log.zone = ZoneHere();
    if (!options.year.empty()) options.log.year = std::stoi(options.year);
    Writer writer(options.file);
    LogImport* reader = nullptr;
    traffic::Redaction redaction;
    LogImport import(options.log, [&](const Record& record) {
        Record written = record;
        if (options.redacted) redaction.Apply(written);
        writer.Write(written, reader->Zone());
    });
    reader = &import;
    import.Run();
    Report(import);
    if (import.Counts().exchanges + import.Counts().events > 0) return kDone;
    throw Failure(kUsage,
                  "the log has no messages of the library; it writes them at the level debug, which "
                  "`hbbtvctl log debug` sets");
}

}  // namespace

void AddRecord(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<RecordOptions>();
    CLI::App* command = app.add_subcommand("record", "Turn a log into a recording of the traffic");
    command->add_option("ACTION", options->action, "What to do: import")
        ->type_name("ACTION")
        ->check([](const std::string& action) { return action == "import" ? "" : "expected \"import\""; })
        ->required();
    command->add_option("LOG", options->log.path, "Log of a service, of logcat or of a Linux host; - is standard input")
        ->type_name("LOG")
        ->required();
    command->add_option("--record", options->file, "The recording, which must not exist (default: standard output)")
        ->type_name("FILE");
    command
        ->add_option("--zone", options->log.zone, "Zone of the log's times, as +01:00 (default: that of this machine)")
        ->type_name("ZONE")
        ->check(CheckZone);
    command->add_option("--year", options->year, "Year of the log's times (default: the latest that is possible)")
        ->type_name("YEAR")
        ->check(WholeNumber(1970, 2200));
    AddRedact(*command, options->redacted);
    command->footer(
        "Reads the messages that the service writes at the level debug, from logcat in the formats brief, tag, "
        "process,\n"
        "thread, time, threadtime, long and raw, or from the standard error of a service on a Linux host. Messages "
        "that\n"
        "the log has cut or mixed are reported, and kept as far as they are there. An exchange has a duration only if\n"
        "the log also has the level verbose and the threads.\n\n"
        "Examples:\n"
        "  hbbtvctl record import log.txt --record imported.ndjson\n"
        "  hbbtvctl record import log.txt --redact --record for-the-supplier.ndjson\n"
        "  hbbtvctl record import log.txt --zone +01:00 --year 2026 | hbbtvctl show -");
    command->callback([options, &invocation] { invocation.run = [options] { return Run(*options); }; });
}

}  // namespace hbbtv::ctl
