// Searches from a client's process through the service to the simulated platform and back: programmes by a word of
// their title, combined queries, a channel from a time on, pages, and the states that events tell.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelConfig.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelList.h>
#include <vantorel/hardware/hbbtv/1.0/IProgramme.h>
#include <vantorel/hardware/hbbtv/1.0/ISearchManager.h>

#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using namespace vantorel::hardware::hbbtv::V1_0;
using android::sp;
using android::hardware::Return;

const char* const kLineUp = R"({
    "networks": [{"id": "sat", "name": "Satellite", "delivery": "DVB_S", "nid": 1}],
    "services": [
        {"name": "One", "network": "sat", "onid": 1, "tsid": 1, "sid": 1, "type": "TV", "number": 1,
         "programmeId": "one.tv", "components": [{"type": "video", "tag": 1, "pid": 101, "encoding": "AVC_HD_25"}]},
        {"name": "Two", "network": "sat", "onid": 1, "tsid": 1, "sid": 2, "type": "TV", "number": 2,
         "programmeId": "two.tv", "components": [{"type": "video", "tag": 1, "pid": 201, "encoding": "AVC_HD_25"}]}]})";

const char* const kProgrammes = R"(<?xml version="1.0" encoding="UTF-8"?>
<tv>
  <programme start="20260105180000 +0000" stop="20260105183000 +0000" channel="one.tv">
    <title>Evening News</title><category>News</category></programme>
  <programme start="20260105183000 +0000" stop="20260105191500 +0000" channel="one.tv">
    <title>Österreich am Tisch</title><category>Cooking</category></programme>
  <programme start="20260105191500 +0000" stop="20260105193000 +0000" channel="one.tv">
    <title>Late News</title><category>News</category></programme>
  <programme start="20260105180000 +0000" stop="20260105200000 +0000" channel="two.tv">
    <title>Sports Live</title><category>Sport</category></programme>
</tv>
)";
constexpr uint64_t kHalfPastSix = 1767637800;  // 18:30 of the 5th of January 2026, UTC

// Keeps what it is told, as "state search context".
class KeepingCallback : public ISearchManagerCallback {
  public:
    Return<void> OnSearchManagerEvent(int32_t event, const TolmSearchManagerEventInfo& info, int64_t context) override {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (event == 0) mTold.push_back({info.state, info.searchHandle, context});
        return android::hardware::Void();
    }

    std::vector<std::vector<int64_t>> Told() {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mTold;
    }

  private:
    std::mutex mMutex;
    std::vector<std::vector<int64_t>> mTold;
};

class SimulatedSearches : public testing::Test {
  protected:
    void SetUp() override {
        std::ofstream(mDirectory / "lineup.json") << kLineUp;
        std::ofstream(mDirectory / "programmes.xml") << kProgrammes;
        mPlatform = std::make_unique<SimulatedPlatform>(std::vector<std::string>{
            "--line-up", mDirectory / "lineup.json", "--programmes", mDirectory / "programmes.xml"});
        ASSERT_TRUE(mPlatform->Ready()) << mPlatform->Output();
        mSearches = Find<ISearchManager>();
        mProgrammes = Find<IProgramme>();
        ASSERT_TRUE(mSearches != nullptr && mProgrammes != nullptr);
        mManager = Get<int64_t>(mSearches, &ISearchManager::SearchManager_Create);
        ASSERT_EQ(0, Status(mSearches->SearchManager_RegisterCallback(mManager, mCallback, 0xbeef)));
        mSearch = Get<int64_t>(mSearches, &ISearchManager::SearchManager_CreateSearch, mManager, 1u);
        mResults = Get<int64_t>(mSearches, &ISearchManager::MetaSearch_GetResult, mSearch);
    }

    // The one result of a method that ends well.
    template <typename Value, typename Interface, typename Method, typename... Arguments>
    static Value Get(const sp<Interface>& service, Method method, const Arguments&... arguments) {
        Value value{};
        const auto keep = [&](int32_t status, const auto& result) {
            EXPECT_EQ(0, status);
            value = result;
        };
        EXPECT_TRUE(((*service).*method)(arguments..., keep).isOk());
        return value;
    }

    static int32_t Status(const Return<int32_t>& status) {
        return status.isOk() ? static_cast<int32_t>(status) : -1000;
    }

    int64_t Query(const char* field, TolmQueryComparisonType comparison, const char* value) {
        return Get<int64_t>(mSearches, &ISearchManager::MetaSearch_CreateQuery, mSearch, field, comparison, value);
    }

    // The state that the search is told to be in next.
    int64_t NextState() {
        EXPECT_TRUE(WaitFor([&] { return mCallback->Told().size() > mRead; })) << mPlatform->Output();
        const auto told = mCallback->Told();
        if (told.size() <= mRead) return -1;
        EXPECT_EQ((std::vector<int64_t>{told[mRead][0], mSearch, 0xbeef}), told[mRead]);
        return told[mRead++][0];
    }

    // The titles on a page, after the search is finished.
    std::vector<std::string> Titles(uint32_t offset, uint32_t count) {
        EXPECT_EQ(0, Status(mSearches->SearchResults_GetResults(mResults, offset, count)));
        EXPECT_EQ(0, NextState());
        EXPECT_EQ(offset, Get<uint32_t>(mSearches, &ISearchManager::SearchResults_GetOffset, mResults));
        const auto length = Get<uint32_t>(mSearches, &ISearchManager::SearchResults_GetLength, mResults);
        std::vector<std::string> titles;
        for (uint32_t i = 0; i < length; ++i) {
            const auto programme = Get<int64_t>(mSearches, &ISearchManager::SearchResults_GetProgramme, mResults, i);
            titles.push_back(Get<std::string>(mProgrammes, &IProgramme::GetName, programme));
            EXPECT_EQ(0, Status(mProgrammes->Release(programme)));
        }
        return titles;
    }

    ScratchDirectory mDirectory;
    std::unique_ptr<SimulatedPlatform> mPlatform;
    ServiceProcess mService;
    const sp<KeepingCallback> mCallback = new KeepingCallback;
    sp<ISearchManager> mSearches;
    sp<IProgramme> mProgrammes;
    int64_t mManager = 0;
    int64_t mSearch = 0;
    int64_t mResults = 0;
    size_t mRead = 0;
};

TEST_F(SimulatedSearches, FindProgrammesByAWordOfTheirTitle) {
    const int64_t news = Query("Programme.name", TolmQueryComparisonType::CONTAINS, "NEWS");
    EXPECT_EQ(0, Status(mSearches->MetaSearch_SetQuery(mSearch, news)));
    EXPECT_EQ((std::vector<std::string>{"Evening News", "Late News"}), Titles(0, 10));
    EXPECT_EQ((std::vector<std::string>{"Late News"}), Titles(1, 4294967295u));
    EXPECT_EQ(2u, Get<uint32_t>(mSearches, &ISearchManager::SearchResults_GetTotalSize, mResults));

    const int64_t umlaut = Query("Programme.name", TolmQueryComparisonType::CONTAINS, "öSTERREICH");
    const int64_t both = Get<int64_t>(mSearches, &ISearchManager::Query_Or, umlaut, news);
    const int64_t early = Query("Programme.startTime", TolmQueryComparisonType::LESS_OR_EQUAL, "1767637800");
    const int64_t all = Get<int64_t>(mSearches, &ISearchManager::Query_And, both, early);
    EXPECT_EQ(0, Status(mSearches->MetaSearch_SetQuery(mSearch, all)));
    EXPECT_EQ(3, NextState()) << "the query of what was found has changed";
    EXPECT_EQ((std::vector<std::string>{"Evening News", "Österreich am Tisch"}), Titles(0, 10));

    const int64_t other = Get<int64_t>(mSearches, &ISearchManager::Query_Not, both);
    for (const int64_t query : {news, umlaut, both, early, all}) EXPECT_EQ(0, Status(mSearches->Query_Release(query)));
    EXPECT_EQ(0, Status(mSearches->MetaSearch_SetQuery(mSearch, other)));
    EXPECT_EQ(3, NextState());
    EXPECT_EQ((std::vector<std::string>{"Sports Live"}), Titles(0, 10));
    EXPECT_EQ(-1, Status(mSearches->MetaSearch_SetQuery(mSearch, news))) << "it was released";
}

TEST_F(SimulatedSearches, FindTheProgrammesOfAChannelFromATimeOn) {
    const auto config = Find<IChannelConfig>();
    const auto lists = Find<IChannelList>();
    ASSERT_TRUE(config != nullptr && lists != nullptr);
    const auto list = Get<int64_t>(config, &IChannelConfig::GetChannelList);
    const auto one = Get<int64_t>(lists, &IChannelList::Item, list, 0);
    EXPECT_EQ(0, Status(mSearches->MetaSearch_FindProgrammesFromStream(mSearch, one, kHalfPastSix, 1)));
    EXPECT_EQ((std::vector<std::string>{"Österreich am Tisch"}), Titles(0, 10));
    EXPECT_EQ(0, Status(mSearches->MetaSearch_FindProgrammesFromStream(mSearch, one, kHalfPastSix - 1, 2)));
    EXPECT_EQ(3, NextState());
    EXPECT_EQ((std::vector<std::string>{"Evening News", "Österreich am Tisch"}), Titles(0, 10));
}

TEST_F(SimulatedSearches, EndWhenTheyAreAbortedAndLeaveNothing) {
    EXPECT_EQ(4u, Titles(0, 10).size());
    EXPECT_EQ(0, Status(mSearches->SearchResults_Abort(mResults)));
    EXPECT_EQ(3, NextState());
    EXPECT_EQ(0u, Get<uint32_t>(mSearches, &ISearchManager::SearchResults_GetLength, mResults));
    EXPECT_EQ(0, Status(mSearches->SearchResults_Release(mResults)));
    EXPECT_EQ(-1, Status(mSearches->SearchResults_GetResults(mResults, 0, 1)));
    EXPECT_EQ(0, Status(mSearches->SearchManager_DestroySearch(mSearch)));
    EXPECT_EQ(-1, Status(mSearches->SearchManager_DestroySearch(mSearch)));
    EXPECT_EQ(0, Status(mSearches->SearchManager_Destroy(mManager)));
    EXPECT_EQ(-1, Status(mSearches->SearchManager_RegisterCallback(mManager, mCallback, 1)));
}

}  // namespace

}  // namespace hbbtv::test
