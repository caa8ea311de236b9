// The rules of a relay: which of them apply to a message, and what becomes of it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "common/duration.h"
#include "traffic/record/record.h"
#include "traffic/rules/rule.h"

namespace hbbtv::traffic {

// What becomes of a message.
struct Verdict {
    std::string forward;    // bytes to pass on
    std::string answer;     // bytes to send back
    Milliseconds delay{0};  // before either
    bool hold = false;      // before either, until Go()
    bool close = false;     // after both
    uint64_t rate = 0;      // bytes a second of `forward`; 0: at once
    std::string applied;    // the actions, for Record.rule; empty: none
};

// Not thread-safe.
class Rules {
  public:
    // Throws Failure(kUsage).
    void Add(const std::string& text);

    // Carries out a line: a rule, or a command, of which "help" returns a list. Returns the answer. Throws
    // Failure(kUsage).
    std::string Tell(const std::string& line);

    bool Any() const { return !mRules.empty(); }

    // Applies the rules, in their order, to a message with its header. `reply`: it is the reply of the record, else its
    // message.
    Verdict Apply(const Record& record, bool reply, const std::string& bytes);

    // Calls the function when held messages are let go, or a rule is removed.
    void WhenLetGo(std::function<void()> function) { mHeld.push_back(std::move(function)); }

    // Returns the rules with their numbers, and how often each was applied.
    std::string List() const;

  private:
    struct Entry {
        Rule rule;
        uint64_t applied = 0;
    };

    static bool Applies(Rule& rule, const Record& record, bool reply);
    static void Do(Rule& rule, const Record& record, bool reply, Verdict& verdict);
    std::string Go();
    std::string Remove(const std::string& number);

    std::map<uint64_t, Entry> mRules;  // by number, from 1
    uint64_t mLast = 0;
    std::vector<std::function<void()>> mHeld;
};

}  // namespace hbbtv::traffic
