// Makes records of the messages that the library has written to a log at the level debug.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "traffic/log/log_line.h"
#include "traffic/log/log_time.h"
#include "traffic/record/line_reader.h"
#include "traffic/record/record.h"

namespace hbbtv::traffic {

struct LogSettings {
    std::string path;         // "-" is standard input
    std::string zone;         // of the log's times, if it does not have it
    std::optional<int> year;  // of the log's times, if it does not have it
};

struct LogCounts {
    uint64_t lines = 0;
    uint64_t exchanges = 0;  // requests of the library
    uint64_t events = 0;     // messages of the platform
    uint64_t notes = 0;      // warnings and errors of the library
    uint64_t cut = 0;        // messages that are longer than the log keeps
    uint64_t mixed = 0;      // messages with lines missing, and lines without the message that they belong to
    uint64_t unknown = 0;    // messages that protocol/ does not have
    uint64_t lost = 0;       // lines that the log says it has dropped
};

// A message that was cut or mixed is a record with what is there, and a note. The times are those of the log lines: an
// exchange is written when its reply has come, and has a duration only if the log also has the lines of the level
// verbose, with the beginning of each operation, and the threads.
class LogImport {
  public:
    // Throws Failure(kUsage) if the file cannot be read.
    LogImport(const LogSettings& settings, std::function<void(const Record&)> onRecord);

    // Reads the log to its end. Throws Failure(kUsage).
    void Run();

    const LogCounts& Counts() const { return mCounts; }
    const std::string& Zone() const { return mClock.Zone(); }

    // What was cut, mixed or lost, with its place: "log.txt:17: the log has cut ...". At most 100 are kept.
    const std::vector<std::string>& Problems() const { return mProblems; }

  private:
    // Lines of different threads may alternate.
    using Writer = std::tuple<int, int, std::string>;

    struct Pending {
        LogLine first;
        TimeStamp time{0, 0};
        std::string place;
        std::string text;  // of all its lines
    };

    struct Beginning {
        std::string operation;
        TimeStamp time{0, 0};
    };

    void Take(const LogLine& line, TimeStamp time);
    void TakeLine(const LogLine& line, TimeStamp time);
    void Continue(const LogLine& line);
    void TakeLost(const LogLine& line);
    void Finish(const Writer& writer);
    void FinishMessage(const Pending& pending);
    void SetTimes(const Pending& pending, Record& record);
    void NoteProblem(const Pending& pending, Record& record);
    void Write(Record& record, const LogLine& line);
    void Problem(const std::string& place, const std::string& problem);

    LineReader mReader;
    LogLines mLines;
    LogClock mClock;
    const std::function<void(const Record&)> mOnRecord;
    std::map<Writer, Pending> mPending;
    std::map<std::pair<int, int>, Beginning> mBeginnings;  // by process and thread
    uint64_t mNumber = 0;
    LogCounts mCounts;
    std::vector<std::string> mProblems;
};

}  // namespace hbbtv::traffic
