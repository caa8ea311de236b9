// A program that a test runs to its end, with what it wrote to either output.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "child_process.h"

namespace hbbtv::test {

struct FinishedRun {
    std::optional<int> exit;  // the exit code, minus the signal that ended it, or nothing when it would not end
    std::string output;
    std::string errors;

    // All of it, for the message of a failed assertion.
    std::string Text() const;
};

// argv[0] is found through PATH. Its standard input stays open, and empty, when there is no `input`. TMPDIR has to name
// a ScratchDirectory.
FinishedRun RunToEnd(const std::vector<std::string>& argv, const std::optional<std::string>& input = std::nullopt,
                     const std::vector<std::string>& environment = {});

}  // namespace hbbtv::test
