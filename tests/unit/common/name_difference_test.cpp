// The comparison that completeness tests use.
#include "name_difference.h"

#include <gtest/gtest.h>

#include <vector>

namespace hbbtv::test {
namespace {

using Names = std::vector<std::string>;

TEST(NameDifference, NamesWhatIsMissingAndWhatIsUnexpected) {
    EXPECT_EQ(NameDifference(Names{"b", "a"}, Names{"a", "b"}), "");
    EXPECT_EQ(NameDifference(Names{"a"}, Names{"a", "b", "c"}), "missing: b c");
    EXPECT_EQ(NameDifference(Names{"a", "x"}, Names{"a"}), "unexpected: x");
    EXPECT_EQ(NameDifference(Names{"a", "a"}, Names{"a", "b"}), "missing: b; unexpected: a");
}

}  // namespace
}  // namespace hbbtv::test
