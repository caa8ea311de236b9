// Asks a platform all that protocol/ allows to be asked, in an order in which answers give the handles that other
// requests need.
#pragma once

#include <deque>
#include <set>
#include <string>

#include "check/question.h"

namespace hbbtv::ctl {

struct Scope {
    std::set<std::string> families;  // to report; others are asked only for handles. Empty: all
    bool changes = false;            // also operations that change something
    Milliseconds limit{0};           // of each reply
};

// Returns the operations of the families in scope, in the order of protocol/. Never throws for what a platform does.
std::deque<Question> CheckPlatform(const std::string& directory, const Scope& scope);

}  // namespace hbbtv::ctl
