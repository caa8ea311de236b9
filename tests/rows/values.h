// Values for the members of messages, generated from what protocol/ says of them.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace hbbtv::test {

// Which of a message's bools are true, counted in the order of its members.
constexpr int kNoBool = -1;
constexpr int kAllBools = -2;

// Returns how many bools the members have. A whole number of at most 1 counts as one.
int CountBools(const Json::Value& members);

// Returns a value for each argument of these members, by name. No two are alike, so that an exchange of two is noticed,
// and their types can be told apart: an int is negative, a uint and a pointer have their top bits set, unless a "max"
// says otherwise; a string is named after its member; a list has three elements. Members of the same name have other
// values under another `seed`.
Json::Value ValuesFor(const Json::Value& members, int seed, int trueBool);

// Returns the values of a document, as ValuesFor() would have given them.
Json::Value ValuesOf(const Json::Value& members, const Json::Value& document);

// Returns the names of the arguments, in the order of the members. Sizes of arrays follow from those.
std::vector<std::string> ArgumentNames(const Json::Value& members);

// A result of an operation, and the arguments of the reply that it is read from: mostly one, of a list of pairs two.
struct Result {
    std::string type;  // of the first one's member
    std::vector<std::string> arguments;
    bool list = false;
};

std::vector<Result> ResultsOf(const Json::Value& reply);

// The member of an argument.
const Json::Value& MemberOf(const Json::Value& members, const std::string& argument);

}  // namespace hbbtv::test
