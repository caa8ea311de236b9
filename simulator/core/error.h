// The two types of error.
#pragma once

#include <stdexcept>
#include <string>

namespace hbbtv::sim {

// A request, a command of the viewer or a file's content that is refused. The reply's "ret" becomes -1, the reason is
// logged, and the simulator continues.
class Refused : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A command that does not match its usage; the reason is the usage.
inline Refused WrongWords() {
    return Refused("");
}

// Documented in docs/simulator.md.
enum ExitCode { kEnded = 0, kTellFailed = 1, kUsage = 2, kFileRefused = 3, kCannotServe = 4, kCannotKeep = 5 };

// The program cannot continue and ends with the code. The reason of kFileRefused begins with its place: "file:line: ".
class Fatal : public std::runtime_error {
  public:
    Fatal(ExitCode code, const std::string& reason) : std::runtime_error(reason), mCode(code) {}

    ExitCode Code() const { return mCode; }

  private:
    ExitCode mCode;
};

}  // namespace hbbtv::sim
