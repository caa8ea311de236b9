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
    std::optional<std::string> json;  // an object with all of them, or "@file" or "-"
    std::string jsonIs{"the arguments after --json"};
};

// A value may be "@FILE" (what the file holds), "-" (what standard input holds) or "@@..." (a text that begins with @).
// The result is an object by name, checked against the parameters. `whose` begins the sentences of refusal. Throws
// Failure(kUsage).
Json::Value ReadArguments(const std::string& whose, const std::vector<Parameter>& parameters,
                          const GivenArguments& given, bool allRequired);

// The same in the order of the parameters.
Json::Value InOrder(const std::vector<Parameter>& parameters, const Json::Value& byName);

// What "@FILE", "-" or the word itself stands for. Throws Failure(kUsage).
std::string ReadWord(const std::string& word);

}  // namespace hbbtv::ctl
