// The output of a play: its own lines, each step with its outcome, and the events in between, in order.
#pragma once

#include <json/value.h>

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/failure.h"

namespace hbbtv::ctl {

// A finished step.
struct StepReport {
    std::string file;
    int line = 0;
    std::string keyword;
    std::string asked;     // for people; empty: nothing to show
    std::string answered;  // for people
    Json::Value details{Json::objectValue};
    std::optional<Failure> failure;
};

class Transcript {
  public:
    enum class Mode { PrintedLines, Steps, Json };

    explicit Transcript(Mode mode) : mMode(mode) {}

    // Prints a heading between steps.
    void Title(const std::string& title);

    // Prints a line of the play's own.
    void Print(const std::string& line);

    // Starts a step. Events that arrive before its end are shown after it.
    void Begin();
    void End(const StepReport& report);

    // Until EndQuiet(), steps are counted but not shown.
    void BeginQuiet();
    void EndQuiet();

    // Prints an event. Thread-safe.
    void Event(const std::string& method, const std::string& arguments);

  private:
    using Clock = std::chrono::steady_clock;

    void WriteLineLocked(Clock::time_point when, const std::string& text);
    void WriteJsonLocked(const StepReport& report, double milliseconds);

    const Mode mMode;
    const Clock::time_point mStart = Clock::now();
    std::mutex mMutex;
    bool mInStep = false;                                              // guarded by mMutex
    Clock::time_point mBegun;                                          // guarded by mMutex
    std::vector<std::pair<Clock::time_point, std::string>> mDeferred;  // guarded by mMutex
    int mQuiet = 0;                                                    // guarded by mMutex
    int mQuietSteps = 0;                                               // guarded by mMutex
    Clock::time_point mQuietBegun;                                     // guarded by mMutex
};

}  // namespace hbbtv::ctl
