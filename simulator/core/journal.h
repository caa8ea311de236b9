// What the simulator tells the person in front of it: log lines on standard error when something is not as it should
// be, and, when asked for, a trace on standard output with one line per request (with its reply) and per event.
#pragma once

#include <json/value.h>

#include <chrono>
#include <string>

namespace hbbtv::sim {

class Journal {
  public:
    explicit Journal(bool trace) : mTrace(trace) {}

    static void Log(const std::string& line);

    bool Tracing() const { return mTrace; }

    // `outcome` is the reply's members, or why there is none.
    void Request(const std::string& operation, const std::string& arguments, const std::string& outcome,
                 std::chrono::duration<double, std::milli> time) const;
    void Event(const std::string& name, const std::string& members, const std::string& outcome) const;

  private:
    bool mTrace;
};

// The members as "name=value name=value". Strings are in quotes, except handles. `codeMember` is that of a request: it
// and "type" are left out, since they say only which operation it is.
std::string Readable(const Json::Value& object, const std::string& codeMember = "");

// The text in one line, with blanks in place of control characters.
std::string OneLine(std::string text);

// The start of something that came from outside, in one line, fit to be printed.
std::string Excerpt(const std::string& text);

}  // namespace hbbtv::sim
