// How a command of hbbtvctl ends when it does not end well: an exit code that scripts can rely on, and a text that says
// what was tried, where, and what to do.
#pragma once

#include <stdexcept>
#include <string>

namespace hbbtv {

enum ExitCode {
    kDone = 0,
    kStatusNotZero = 1,  // the platform answered, and its status is not 0
    kUsage = 2,          // the command line makes no sense
    kNobodyThere = 3,    // no service, no socket, nobody behind it
    kTimeout = 4,        // no answer in time
    kNotUnderstood = 5,  // an answer that makes no sense
    kPeerLost = 6,       // the other side went away during the call
    kUnexpected = 7,     // a line of a play did not hold
    kInterrupted = 130,  // Ctrl-C or SIGTERM, where it is not the expected end
};

class Failure : public std::runtime_error {
  public:
    Failure(ExitCode code, const std::string& text) : std::runtime_error(text), mCode(code) {}

    ExitCode Code() const { return mCode; }

  private:
    ExitCode mCode;
};

}  // namespace hbbtv
