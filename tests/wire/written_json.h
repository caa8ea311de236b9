// JSON as a person writes it into a test, one object on a line, and what the wire makes of it: taken apart and put
// together by hand, without any JSON library.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace hbbtv::test {

// The members of an object, each with its value as written.
using WrittenMembers = std::vector<std::pair<std::string, std::string>>;

// Takes {"a": 1, "b": "text"} apart. Values of any kind; the keys hold no escapes.
WrittenMembers MembersOf(const std::string& object);

// The object in the form of the wire: keys in the order of their bytes, a line and a tab for each member, a newline at
// the end. Values stand as they are written, so they have to be scalars in the wire's own spelling.
std::string Styled(const std::string& object);

// {"a": 1, "b": "text"} again.
std::string ObjectOf(const WrittenMembers& members);

// A copy of an object in which one member has another value, or, with an empty value, is missing.
std::string WithMember(const std::string& object, const std::string& key, const std::string& value);

}  // namespace hbbtv::test
