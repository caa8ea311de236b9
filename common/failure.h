// Errors of tools: a message that says what failed, on what, why and what to do, and an exit code for scripts.
#pragma once

#include <stdexcept>
#include <string>

namespace hbbtv {

enum ExitCode {
    kDone = 0,
    kStatusNotZero = 1,  // the platform returned a status other than 0
    kUsage = 2,          // invalid command line
    kUnavailable = 3,    // no service, no socket, no process that serves it, or no client
    kTimeout = 4,        // no reply in time
    kInvalidReply = 5,
    kPeerLost = 6,       // the connection was lost, or the service ended, during the call
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
