// Values of a play: names and what they stand for, expressions, and patterns.
#pragma once

#include <json/value.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "play/language/script.h"

namespace hbbtv::ctl {

// The names that are bound. A block forgets what was first bound in it.
class Names {
  public:
    void Begin() { mScopes.emplace_back(); }
    void End() { mScopes.pop_back(); }

    // Returns null when the name is not bound.
    const Json::Value* Find(const std::string& name) const;

    // Changes the name where it is bound, or binds it in the innermost block.
    void Set(const std::string& name, const Json::Value& value);

  private:
    std::vector<std::map<std::string, Json::Value>> mScopes{1};
};

bool IsConstant(const Expression& expression);

// Throws Failure for a name that is not bound, since what would have bound it failed.
Json::Value Evaluate(const Expression& expression, const Names& names);

// Compares the value with the pattern and, when it fits, binds the pattern's new names. `type` is that of the value,
// null on the wire: enumerators go by name where it is known.
bool Match(const Expression& pattern, const Json::Value& value, const Type* type, Names& names);

// The same for several values, of which either all names are bound or none.
bool Match(const Expressions& patterns, const Json::Value& values, const std::vector<Parameter>& parameters,
           Names& names);

// Returns the pattern with the values of its names: what was expected.
std::string Shown(const Expression& pattern, const Names& names);
std::string Shown(const Expressions& patterns, const Names& names);

// Whether the value is not 0, false or empty.
bool IsSomething(const Json::Value& value);

// Whether the text is the pattern's, in which "..." stands for any characters.
bool MatchText(const std::string& pattern, const std::string& text);

}  // namespace hbbtv::ctl
