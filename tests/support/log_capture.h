// The log lines of the code under test. log_capture.cpp replaces __android_log_print and __android_log_is_loggable of
// liblog.
#pragma once

#include <string>
#include <vector>

#include "wait_for.h"

namespace hbbtv::test {

struct LogLine {
    int priority;  // ANDROID_LOG_...
    std::string tag;
    std::string text;  // all of it

    // The parts of "[tolm](file:line) function: message". The message is the whole line when it has another form.
    std::string file;
    int line;
    std::string function;
    std::string message;
};

// Collects all lines of the process while it exists; one at a time. Without one, lines are dropped.
class LogCapture {
  public:
    // Lines below `minimum` are filtered, as the log's settings do on a device.
    explicit LogCapture(int minimum = 2 /* ANDROID_LOG_VERBOSE */);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogLine> Lines() const;

    // Returns the number of lines with this priority, tag and message.
    int Count(int priority, const std::string& tag, const std::string& message) const;

    bool WaitForLine(int priority, const std::string& tag, const std::string& message) const {
        return WaitFor([&] { return Count(priority, tag, message) > 0; });
    }

    // Returns all lines, for the message of a failed assertion.
    std::string Text() const;

    void Clear();
};

}  // namespace hbbtv::test
