#include "common/nearest_name.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <vector>

namespace hbbtv {

namespace {

constexpr size_t kLongestName = 64;

// Returns the number of letters to insert, delete or replace, ignoring case.
size_t Distance(const std::string& a, const std::string& b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const bool same = std::tolower(static_cast<unsigned char>(a[i - 1])) ==
                              std::tolower(static_cast<unsigned char>(b[j - 1]));
            const size_t replaced = diagonal + (same ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[b.size()];
}

}  // namespace

std::string DidYouMean(const std::string& name, const std::set<std::string>& known, size_t longestList) {
    std::string nearest;
    size_t least = std::max<size_t>(name.size() / 2, 1) + 1;
    std::string all;
    for (const std::string& candidate : known) {
        const bool prefix = !name.empty() && candidate.rfind(name, 0) == 0;
        const size_t distance = name.size() > kLongestName ? least : prefix ? 1 : Distance(name, candidate);
        if (distance < least) {
            least = distance;
            nearest = candidate;
        }
        all += (all.empty() ? "\"" : ", \"") + candidate + "\"";
    }
    if (!nearest.empty()) return "; did you mean \"" + nearest + "\"?";
    return known.empty() || known.size() > longestList ? "" : "; known are " + all;
}

}  // namespace hbbtv
