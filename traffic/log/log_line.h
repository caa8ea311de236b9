// The lines of logs: of logcat in its formats, and of a service on a Linux host.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hbbtv::traffic {

// When a line was written. A log usually has no year and no zone.
struct LogTime {
    int year = 0;   // 0: not in the log
    int month = 0;  // 0: the log has seconds instead of a date
    int day = 0;
    uint64_t microseconds = 0;  // of the day; without a date, since 1970 or since the machine has started
    std::string zone;           // "+01:00", or "" if it is not in the log
};

struct LogLine {
    std::optional<LogTime> time;
    int pid = 0;  // 0: not in the log
    int tid = 0;
    char priority = '\0';  // 'D'; 0: not in the log
    std::string tag;
    std::string text;
};

// Reads lines one after the other: in the format "long", a line has the head of a message, and those after it its text.
class LogLines {
  public:
    // Returns the line, or nothing if it is only a head, or what logcat writes between buffers. A line in no known
    // format is returned with its text only.
    std::optional<LogLine> Read(std::string_view line);

  private:
    std::optional<LogLine> mHead;  // of the format "long"
};

}  // namespace hbbtv::traffic
