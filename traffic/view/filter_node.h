// A parsed filter: a tree of tests.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "traffic/record/record.h"

namespace hbbtv::traffic {

// A record with what several tests of a filter need of it.
class Subject {
  public:
    explicit Subject(const Record& record) : mRecord(record) {}

    const Record& Of() const { return mRecord; }

    // Returns all text of the record in lower case: names, payloads, notes.
    const std::string& Text() const;

  private:
    const Record& mRecord;
    mutable std::optional<std::string> mText;
};

struct FilterNode {
    enum class Kind { Test, Not, And, Or };

    Kind kind = Kind::Test;
    std::function<bool(const Subject&)> test;                 // Test
    std::vector<std::shared_ptr<const FilterNode>> operands;  // the others
    bool needsPayloads = false;

    bool Matches(const Subject& subject) const;
};

// "family:channel" has the field "family", the operator ":" and the value "channel".
struct FilterWord {
    std::string field;       // empty: a word or text
    std::string comparison;  // ":", "!=", ">", ...
    std::string value;
    bool quoted = false;  // the value
    size_t position = 0;  // in the text, from 1
};

// Returns the test that a word asks for. Throws Failure(kUsage) with the position.
FilterNode TestOf(const FilterWord& word);

// Throws Failure(kUsage).
[[noreturn]] void FailAt(size_t position, const std::string& problem);

// Returns the text in lower case. Only ASCII letters change.
std::string LowerCase(std::string text);

}  // namespace hbbtv::traffic
