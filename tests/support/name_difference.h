// Compares lists of names so that a failure shows what is missing: gtest prints only the start of long lists.
#pragma once

#include <set>
#include <string>

namespace hbbtv::test {

// Returns "missing: a b; unexpected: c", or "" if both have the same names in any order.
template <typename Actual, typename Expected>
std::string NameDifference(const Actual& actual, const Expected& expected) {
    const std::multiset<std::string> have(actual.begin(), actual.end());
    const std::multiset<std::string> want(expected.begin(), expected.end());
    std::string missing;
    std::string unexpected;
    const std::set<std::string> wanted(want.begin(), want.end());
    for (const std::string& name : wanted) missing += have.count(name) < want.count(name) ? " " + name : "";
    const std::set<std::string> had(have.begin(), have.end());
    for (const std::string& name : had) unexpected += want.count(name) < have.count(name) ? " " + name : "";
    if (missing.empty() && unexpected.empty()) return "";
    return (missing.empty() ? "" : "missing:" + missing) + (missing.empty() || unexpected.empty() ? "" : "; ") +
           (unexpected.empty() ? "" : "unexpected:" + unexpected);
}

}  // namespace hbbtv::test
