// The report of `hbbtvctl check`, in its three forms.
#pragma once

#include <deque>
#include <string>

#include "check/question.h"

namespace hbbtv::ctl {

// A line per family, one for each finding, and a summary.
std::string ReportForPeople(const std::deque<Question>& questions);

// A document on one line.
std::string ReportForPrograms(const std::string& directory, const std::deque<Question>& questions);

// JUnit's XML: a suite per family, a test case per operation.
std::string ReportAsJunit(const std::deque<Question>& questions);

}  // namespace hbbtv::ctl
