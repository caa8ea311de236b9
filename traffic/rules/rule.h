// A rule for the messages that a relay passes on: which ones, and what to do to them on purpose.
//
//   op:SetChannel delay=2s
//   family:channel on=reply p=0.1 seed=7 set=name:"Some channel"
#pragma once

#include <json/value.h>

#include <cstdint>
#include <optional>
#include <random>
#include <string>

#include "common/duration.h"
#include "traffic/view/filter.h"

namespace hbbtv::traffic {

struct Rule {
    enum class Action { Delay, Drop, Duplicate, Cut, Corrupt, Set, Answer, Hold, Close, Slow };

    std::string text;
    Filter filter;
    bool onReply = false;  // what is done is done to the reply; else to the message that asks, or the event
    Action action = Action::Drop;
    std::string what;                // the action as it was written, "delay=2s"
    Milliseconds delay{0};           // Delay
    std::optional<uint64_t> number;  // Cut: bytes that are passed on; Corrupt: bytes; Slow: bytes per second
    std::string member;              // Set
    Json::Value value;               // Set, Answer
    double probability = 1;
    std::optional<uint64_t> left;  // how many messages more; nothing: any number
    std::mt19937_64 random;
};

// Throws Failure(kUsage) that names the rule and what is wrong.
Rule ParseRule(const std::string& text);

// Returns what a rule can contain, for --help and the command "help": "delay=TIME  passes the message on later".
std::string RuleActions();
std::string RuleOptions();

}  // namespace hbbtv::traffic
