// Filters: what passes, and above all what does not.
#include "traffic/view/filter.h"

#include <gtest/gtest.h>

#include "common/failure.h"
#include "filter_cases.h"

namespace hbbtv::traffic::test {
namespace {

bool Passes(const std::string& filter, const Record& record) {
    return Filter(filter).Matches(record);
}

std::string Passing(const std::string& filter) {
    std::string names;
    for (const auto& [name, record] : FilteredRecords()) {
        if (Passes(filter, record)) names += (names.empty() ? "" : " ") + name;
    }
    return names;
}

TEST(Filter, LetsThroughWhatItNamesAndNothingElse) {
    for (const FilterCase& row : FilterCases()) EXPECT_EQ(Passing(row.filter), row.passes) << row.filter;
}

TEST(Filter, FindsTextOfAnyLanguage) {
    const Record record = GetName(R"({"name":"Fernsehen f\u00fcr alle","ret":0})");
    EXPECT_TRUE(Filter("für").Matches(record));
    EXPECT_TRUE(Filter("\"für alle\"").Matches(record));
    EXPECT_TRUE(Filter("reply.name~für").Matches(record));
    EXPECT_FALSE(Filter("fur").Matches(record));
}

TEST(Filter, CombinesWordsAsPeopleExpect) {
    for (const FilterCase& row : CombinedFilterCases()) EXPECT_EQ(Passing(row.filter), row.passes) << row.filter;
}

std::string Problem(const std::string& filter) {
    try {
        Filter parsed(filter);
    } catch (const Failure& e) {
        EXPECT_EQ(e.Code(), kUsage);
        return e.what();
    }
    return "";
}

TEST(Filter, RefusesWhatItDoesNotUnderstandWithItsPlace) {
    for (const auto& [filter, problem] : FilterProblems()) EXPECT_EQ(Problem(filter), "filter, " + problem);
}

TEST(Filter, TellsOperationsOfTheSameCodeApart) {
    const char* const configuration = "service_plugin_to_hbbtv_conf";
    const char* const mtm = "service_mtm_to_hbbtv";
    for (const auto& [name, record] : std::initializer_list<std::pair<const char*, Record>>{
             {"op:GetText", Exchange(configuration, R"({"key_type":1,"method":22,"type":9})")},
             {"op:SetText", Exchange(configuration, R"({"info":"a","method":22,"type":9})")},
             {"op:GetText", Exchange(configuration, R"({"method":22,"type":9})")},
             {"op:OnTabShow", Exchange(mtm, R"({"method":6,"tabid":1,"type":0})")},
             {"op:OnLoadingStateChanged",
              Exchange(mtm, R"({"can_back":true,"can_forward":true,"is_loading":true,"method":6,"type":0})")}}) {
        EXPECT_TRUE(Passes(name, record)) << name << ", and not " << record.operation;
    }
}

TEST(Filter, KnowsWhetherItLooksIntoPayloads) {
    for (const char* filter : {"", "family:channel & ms>5", "event | !status:0", "op:GetName"}) {
        EXPECT_FALSE(Filter(filter).NeedsPayloads()) << filter;
    }
    for (const char* filter : {"erste", "handle:0x1", "ms>5 & !(event | reply.name:a)"}) {
        EXPECT_TRUE(Filter(filter).NeedsPayloads()) << filter;
    }
}

}  // namespace
}  // namespace hbbtv::traffic::test
