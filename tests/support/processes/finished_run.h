// A program that a test runs to its end, with its standard output and standard error.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "child_process.h"

namespace hbbtv::test {

struct FinishedRun {
    std::optional<int> exit;  // the exit code, minus the signal that ended it, or nothing when it did not end in time
    std::string output;
    std::string errors;

    // Returns all of it, for the message of a failed assertion.
    std::string Text() const;
};

// argv[0] is found through PATH. Without `input`, its standard input stays open and empty. TMPDIR must name a
// ScratchDirectory.
FinishedRun RunToEnd(const std::vector<std::string>& argv, const std::optional<std::string>& input = std::nullopt,
                     const std::vector<std::string>& environment = {}, std::chrono::milliseconds patience = kPatience);

}  // namespace hbbtv::test
