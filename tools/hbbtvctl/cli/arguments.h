// The arguments of a method, an operation or an event, from the command line.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>
#include <vector>

#include "package/description.h"

namespace hbbtv::ctl {

struct GivenArguments {
    std::vector<std::string> words;   // "name=value", or values in order
    std::optional<std::string> json;  // an object with all of them, "@file" or "-"
    std::string jsonIs{"--json"};     // names it in messages
};

// Returns an object of the values by name, checked against the parameters. A value can be "@FILE" (the content of the
// file), "-" (standard input) or "@@..." (a string that begins with @). Messages begin with `whose`. Throws
// Failure(kUsage).
Json::Value ReadArguments(const std::string& whose, const std::vector<Parameter>& parameters,
                          const GivenArguments& given, bool allRequired);

// The same for members of a message, which may be wrong: all are optional, values that are not of the member's type
// stay JSON or, if they are not JSON, strings, and other names are accepted.
Json::Value ReadMembers(const std::string& whose, const std::vector<Parameter>& members, const GivenArguments& given);

// Returns the values as an array, in the order of the parameters.
Json::Value InOrder(const std::vector<Parameter>& parameters, const Json::Value& byName);

// Returns the content that "@FILE" or "-" refers to, or the word itself. Throws Failure(kUsage).
std::string ReadWord(const std::string& word);

}  // namespace hbbtv::ctl
