// Values of a play: names, expressions and patterns.
#pragma once

#include <json/value.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "play/language/script.h"

namespace hbbtv::ctl {

// The bound names. Names first bound in a block are unbound at its end.
class Names {
  public:
    void Begin() { mScopes.emplace_back(); }
    void End() { mScopes.pop_back(); }

    // Returns null if the name is not bound.
    const Json::Value* Find(const std::string& name) const;

    // Changes the value of a bound name, or binds the name in the innermost block.
    void Set(const std::string& name, const Json::Value& value);

  private:
    std::vector<std::map<std::string, Json::Value>> mScopes{1};
};

bool IsConstant(const Expression& expression);

// Throws Failure for a name that is not bound because the line that binds it failed.
Json::Value Evaluate(const Expression& expression, const Names& names);

// Compares the value with the pattern and, if it matches, binds the pattern's new names. `type` is that of the value,
// null on the wire: it is needed for the names of enumerators.
bool Match(const Expression& pattern, const Json::Value& value, const Type* type, Names& names);

// The same for several values; binds either all names or none.
bool Match(const Expressions& patterns, const Json::Value& values, const std::vector<Parameter>& parameters,
           Names& names);

// Returns the pattern with the values of its names, for messages.
std::string Shown(const Expression& pattern, const Names& names);
std::string Shown(const Expressions& patterns, const Names& names);

// Returns whether the value is not 0, false or empty.
bool IsSomething(const Json::Value& value);

// Returns whether the string matches the pattern, in which "..." matches any characters.
bool MatchText(const std::string& pattern, const std::string& text);

}  // namespace hbbtv::ctl
