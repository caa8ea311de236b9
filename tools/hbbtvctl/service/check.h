// One check of `hbbtvctl doctor`, and what it found.
#pragma once

#include <string>
#include <vector>

#include "common/failure.h"

namespace hbbtv::ctl {

struct Check {
    enum class Level { Good, Warning, Problem };

    std::string name;
    Level level;
    std::string finding;
    std::string advice;
    ExitCode code = kUnavailable;  // of a problem
};

using Checks = std::vector<Check>;

Check Good(const std::string& name, const std::string& finding);

// Returns the names with commas between them, for a finding.
std::string Joined(const std::vector<std::string>& names);

}  // namespace hbbtv::ctl
