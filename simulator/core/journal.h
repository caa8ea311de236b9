// The simulator's output: log lines on standard error about problems and, optionally, a trace on standard output with
// one line per request (with its reply) and per event.
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
// and "type" are left out, because they only identify the operation.
std::string Readable(const Json::Value& object, const std::string& codeMember = "");

// The string in one line and safe to print: control characters are replaced by spaces, others that a terminal must not
// get are escaped.
std::string OneLine(std::string text);

// The start of untrusted input, in one line, safe to print.
std::string Excerpt(const std::string& text);

}  // namespace hbbtv::sim
