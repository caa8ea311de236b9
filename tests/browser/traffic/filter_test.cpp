// The filter of the page selects what that of the command line selects.
#include <gtest/gtest.h>

#include "common/text/json.h"
#include "filter_cases.h"
#include "page_in_chromium.h"
#include "recording_page.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using traffic::test::FilterCase;

class FilterOfThePage : public testing::Test {
  protected:
    void SetUp() override {
        std::vector<traffic::Record> records;
        for (const auto& [name, record] : traffic::test::FilteredRecords()) {
            names.append(name);
            records.push_back(record);
        }
        page.Open(WritePage(directory / "filter.html", records));
        page.Await(kAllAreShown);
    }

    // Returns the names of the records that the page shows, or the message about the filter.
    std::string Shown(const std::string& filter) {
        return page.Text("page.filterBy(" + WriteJson(filter) +
                         "), page.view.restart().then(() => { const names = " + WriteJson(names) +
                         "; return byId('filter-error').textContent || "
                         "page.view.shown.map((row) => names[row.place]).join(' '); })");
    }

    void Expect(const std::vector<FilterCase>& cases) {
        for (const FilterCase& row : cases) EXPECT_EQ(Shown(row.filter), row.passes) << row.filter;
    }

    const ScratchDirectory directory;
    Json::Value names{Json::arrayValue};
    PageInChromium page;
};

TEST_F(FilterOfThePage, LetsThroughWhatThatOfTheCommandLineDoes) {
    Expect(traffic::test::FilterCases());
    Expect(traffic::test::CombinedFilterCases());
}

TEST_F(FilterOfThePage, RefusesWhatThatOfTheCommandLineRefuses) {
    for (const auto& [filter, problem] : traffic::test::FilterProblems()) {
        // The page does not guess what was meant.
        const std::string expected = problem.substr(0, problem.find("; did you mean"));
        EXPECT_EQ(Shown(filter).substr(0, expected.size()), expected) << filter;
    }
}

}  // namespace

}  // namespace hbbtv::test
